#include "corvane_standin/capture/ScreenPainter.h"

#include <algorithm>

#include "corvane_standin/capture/ElementPainter.h"
#include "corvane_standin/capture/HomeScreenPainter.h"
#include "corvane_standin/capture/PngPicture.h"

namespace corvane::standin {

namespace {

using Part = Target::Part;

constexpr double margin = 16;

/// Where the elements of a page lie: buttons and bills at its foot, the others from the top down.
class PageLayout {
 public:
  PageLayout(const Screen& screen, Rect page, Lettering& letters)
      : places(screen.elements.size()), elements(screen.elements), page(page), letters(letters) {
    const double bodyHeight = placeAll(false, 10) + 10;
    const double footHeight = placeAll(true, 10) + 10;
    const bool hasFoot = std::any_of(elements.begin(), elements.end(), isAtFoot);
    footTop = page.bottom() - (hasFoot ? footHeight : 0);
    const double offset = scrollOffset(screen, bodyHeight);
    for (std::size_t i = 0; i < places.size(); ++i) {
      places[i] = places[i].moved(0, isAtFoot(elements[i]) ? footTop : page.y - offset);
    }
  }

  /// One for each element, whether in sight or not.
  std::vector<Rect> places;

  [[nodiscard]] bool isInSight(std::size_t i) const {
    return isAtFoot(elements[i]) || (places[i].bottom() > page.y && places[i].y < footTop);
  }
  [[nodiscard]] Rect foot() const { return {0, footTop, page.width, page.bottom() - footTop}; }

 private:
  [[nodiscard]] double width() const { return page.width - 2 * margin; }

  /// Places the elements at the foot, or all others, from `y` on; gives where they end.
  double placeAll(bool atFoot, double y) {
    bool besideLast = false;
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (isAtFoot(elements[i]) != atFoot) continue;
      const double height = heightOf(elements[i], width(), letters);
      if (!isHalfWide(elements[i])) {
        places[i] = {margin, y, width(), height};
        y += height;
        besideLast = false;
        continue;
      }
      const double half = (width() - gap) / 2;
      places[i] = besideLast ? Rect{margin + half + gap, y - height, half, height}
                             : Rect{margin, y, half, height};
      if (!besideLast) y += height;
      besideLast = !besideLast;
    }
    return y;
  }

  /// How far the page is moved up: to its end when it was scrolled, but never so far that the
  /// target is out of sight.
  [[nodiscard]] double scrollOffset(const Screen& screen, double bodyHeight) const {
    const double visible = footTop - page.y;
    const double most = std::max(bodyHeight - visible, 0.0);
    double offset = screen.scrolled ? most : 0;
    const auto& target = screen.target;
    if (target && target->part == Part::element && !isAtFoot(elements[target->index])) {
      const Rect place = places[target->index];
      const double least = std::max(place.bottom() + gap - visible, 0.0);
      offset = std::clamp(offset, least, std::max(place.y - gap, least));
    }
    return std::min(offset, most);
  }

  static constexpr double gap = 12;

  const std::vector<Element>& elements;
  Rect page;
  Lettering& letters;
  double footTop = 0;
};

/// Paints one screen and notes where its target is.
class Painting {
 public:
  Painting(const Screen& screen, const PhoneFrame& frame, const Brush& brush)
      : screen(screen), frame(frame), brush(brush) {}

  std::optional<Rect> paint() {
    if (screen.place == Screen::Place::homeScreen) {
      note(Part::appIcon, 0, paintHomeScreen(screen, frame, brush));
      return target;
    }
    paintPage();
    frame.paintTitleBar(screen, brush);
    frame.paintStatusBar(screen, brush.look.ink, brush);
    if (screen.hasSearchIcon) note(Part::searchIcon, 0, frame.searchIconArea());
    if (screen.canGoBack) note(Part::back, 0, frame.backArea());
    for (std::size_t i = 0; i < screen.tabs.size(); ++i) {
      note(Part::tab, i, frame.tabArea(screen, i));
    }
    if (screen.dialog) {
      if (!screen.keyboard) frame.paintBottom(screen, brush);
      brush.canvas.cover(black, 0.42);
      paintDialog(*screen.dialog);
    }
    if (!screen.dialog || screen.keyboard) frame.paintBottom(screen, brush);
    return target;
  }

 private:
  void note(Part part, std::size_t index, Rect area) {
    if (screen.target && screen.target->part == part && screen.target->index == index) {
      target = area;
    }
  }

  void paintPage() {
    const PageLayout layout(screen, frame.pageOf(screen), brush.letters);
    const auto paintPart = [&](bool atFoot) {
      for (std::size_t i = 0; i < screen.elements.size(); ++i) {
        const Element& element = screen.elements[i];
        if (isAtFoot(element) != atFoot || !layout.isInSight(i)) continue;
        note(Part::element, i, paintElement(element, layout.places[i], brush));
      }
    };
    paintPart(false);
    const Rect foot = layout.foot();
    if (foot.height > 0) {
      brush.canvas.fill(foot, brush.look.card);
      brush.canvas.fill({foot.x, foot.y, foot.width, 0.67}, brush.look.line);
    }
    paintPart(true);
  }

  void paintDialog(const Dialog& dialog) {
    const auto& look = brush.look;
    const Rect page = frame.dialogSpace(screen);
    const double width = std::min(page.width - 72, 310.0);
    const auto lines = brush.letters.wrapped(dialog.text, {15}, width - 48);
    const double textHeight = 22 * static_cast<double>(lines.size());
    const double height = 72 + textHeight + (dialog.field ? 62 : 0) + 64;
    const Rect box{(page.width - width) / 2, page.centre().y - height / 2, width, height};
    brush.canvas.fillRounded(box, 22, look.card);
    brush.centred({box.centre().x, box.y + 36}, brush.letters.cut(dialog.title, {18}, width - 40),
                  {18, Font::Weight::bold}, look.ink);
    double y = box.y + 66;
    for (const auto& line : lines) {
      brush.centred({box.centre().x, y}, line, {15}, look.quiet);
      y += 22;
    }
    if (dialog.field) {
      const Rect field{box.x + 24, y, width - 48, 46};
      brush.canvas.fillRounded(field, 11, look.accent);
      brush.canvas.fillRounded(field.inset(1.6), 9.5, look.ground);
      brush.line(field.x + 14, field.centre().y, field.width - 28, *dialog.field,
                 {17, Font::Weight::medium}, look.ink);
      note(Part::dialogField, 0, field);
    }
    const auto count = dialog.buttons.size();
    const double buttonWidth =
        (width - 48 - 10 * static_cast<double>(count - 1)) / static_cast<double>(count);
    for (std::size_t i = 0; i < count; ++i) {
      const Rect button{box.x + 24 + (buttonWidth + 10) * static_cast<double>(i), box.bottom() - 66,
                        buttonWidth, 46};
      const bool leadsOn = i + 1 == count;
      brush.canvas.fillRounded(button, 13, leadsOn ? look.accent : look.accentTint);
      const Font font{16, Font::Weight::medium};
      brush.centred(button.centre(), brush.letters.cut(dialog.buttons[i], font, buttonWidth - 12),
                    font, leadsOn ? white : look.accent);
      note(Part::dialogButton, i, button);
    }
  }

  const Screen& screen;
  const PhoneFrame& frame;
  const Brush& brush;
  std::optional<Rect> target;
};

}  // namespace

PaintedScreen ScreenPainter::paint(const Screen& screen) {
  const PhoneFrame frame = PhoneFrame::of(screen.phone);
  const Look look = lookOf(screen.appName);
  Canvas canvas(frame.size, scale, look.ground);
  auto target = Painting(screen, frame, Brush{canvas, letters, look}).paint();
  if (target) {
    const auto [width, height] = frame.size;
    target =
        Rect{target->x / width, target->y / height, target->width / width, target->height / height};
  }
  return {encodePng(canvas), target};
}

}  // namespace corvane::standin
