#include "corvane_standin/capture/ScreenPainter.h"

#include <algorithm>
#include <array>
#include <vector>

namespace corvane::standin {

using namespace palette;

namespace {

using Align = Canvas::Align;
using Kind = Element::Kind;
using Weight = Font::Weight;

constexpr Size size{390, 844};
/// The strip at the bottom that the system keeps.
constexpr double homeHeight = 30;
constexpr double tabsHeight = 54;
constexpr double keyboardHeight = 262;
constexpr double titleHeight = 50;
constexpr double margin = 16;

/// Paints one screen and notes where its target is.
class Painting {
 public:
  explicit Painting(const Screen& screen)
      : screen(screen),
        accent(accentOf(screen.appName)),
        isAndroid(screen.phone == Screen::Phone::android),
        pageTop((isAndroid ? 38 : 54) + titleHeight),
        canvas(size, ground),
        places(screen.elements.size()) {
    screen.has(Kind::appIcon) ? paintHomeScreen() : paintApp();
  }

  [[nodiscard]] PaintedScreen result() const {
    if (!target) return {canvas.png(), std::nullopt};
    return {canvas.png(), Rect{target->x / size.width, target->y / size.height,
                               target->width / size.width, target->height / size.height}};
  }

 private:
  /// The numbers of the elements of a region.
  [[nodiscard]] std::vector<std::size_t> of(Region region) const {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (lookOf(screen.elements[i].kind).region == region) numbers.push_back(i);
    }
    return numbers;
  }

  /// Places the elements of a region below each other and gives where they end. Those that are
  /// narrower than the area share a line.
  double stack(Region region, Rect area) {
    constexpr double gap = 12;
    const double half = (area.width - gap) / 2;
    Rect place{area.x, area.y, 0, 0};
    for (const std::size_t i : of(region)) {
      const Kind kind = screen.elements[i].kind;
      const bool isHalf = kind == Kind::card || kind == Kind::dialogButton;
      const bool isBeside = isHalf && place.width == half && place.x == area.x;
      place = {isBeside ? area.x + half + gap : area.x, isBeside ? place.y : place.bottom(),
               isHalf ? half : area.width, lookOf(kind).height};
      places[i] = place;
    }
    return place.bottom();
  }

  /// Places the elements of a region beside each other, in lines of `columns`.
  void spread(Region region, Rect area, std::size_t columns) {
    const double width = area.width / static_cast<double>(columns);
    std::size_t count = 0;
    for (const std::size_t i : of(region)) {
      const std::size_t line = count / columns;
      places[i] = {area.x + width * static_cast<double>(count % columns),
                   area.y + area.height * static_cast<double>(line), width, area.height};
      ++count;
    }
  }

  void paintRegion(Region region) {
    for (const std::size_t i : of(region)) {
      const ElementLook& look = lookOf(screen.elements[i].kind);
      const Rect area = places[i].inset(0, look.space);
      const Rect touched = look.paint(canvas, screen.elements[i], area, accent);
      if (screen.target == i) target = touched;
    }
  }

  void paintApp() {
    const bool hasDialog = screen.has(Kind::dialog);
    double bottom = size.height - homeHeight;
    // A dialog rises above the keyboard, the page behind it stays.
    if (screen.hasKeyboard() && !hasDialog) {
      bottom -= keyboardHeight;
    } else if (screen.has(Kind::tab)) {
      bottom -= tabsHeight;
    }
    paintPage(bottom);
    paintTitleBar();
    paintStatusBar(ink);
    if (screen.hasKeyboard() && !hasDialog) {
      paintKeyboard();
    } else {
      paintTabs();
    }
    if (hasDialog) paintDialog();
    canvas.fill({(size.width - 136) / 2, size.height - 13, 136, 5}, ink, 2.5);
  }

  /// The page, moved to its end when it was scrolled, but never so far that the target is out of
  /// sight.
  void paintPage(double bottom) {
    constexpr double gap = 10;
    const double width = size.width - 2 * margin;
    const double footHeight = stack(Region::foot, {margin, gap, width, 0}) + gap;
    const bool hasFoot = footHeight > 2 * gap;
    const double footTop = hasFoot ? bottom - footHeight : bottom;
    stack(Region::foot, {margin, footTop + gap, width, 0});
    const double end = stack(Region::page, {margin, pageTop + gap, width, 0}) + gap;
    const double most = std::max(end - footTop, 0.0);
    double offset = screen.scrolled ? most : 0;
    if (screen.target && lookOf(screen.elements[*screen.target].kind).region == Region::page) {
      const Rect place = places[*screen.target];
      const double least = std::max(place.bottom() + gap - footTop, 0.0);
      offset = std::clamp(offset, least, std::max(place.y - gap - pageTop, least));
    }
    stack(Region::page, {margin, pageTop + gap - std::min(offset, most), width, 0});
    paintRegion(Region::page);
    if (hasFoot) {
      canvas.fill({0, footTop, size.width, bottom - footTop}, white);
      canvas.fill({0, footTop, size.width, 0.67}, hairline);
      paintRegion(Region::foot);
    }
  }

  void paintTitleBar() {
    canvas.fill({0, 0, size.width, pageTop}, bar);
    canvas.fill({0, pageTop - 0.67, size.width, 0.67}, hairline);
    const Rect area{0, pageTop - titleHeight, size.width, titleHeight};
    const double left = screen.has(Kind::back) ? 52 : margin;
    isAndroid
        ? canvas.write({left, area.y, size.width - 120, titleHeight}, screen.title,
                       {20, Weight::medium}, ink)
        : canvas.write(area.inset(65, 0), screen.title, {17, Weight::bold}, ink, Align::centre);
    for (const std::size_t i : of(Region::titleBar)) {
      const bool isBack = screen.elements[i].kind == Kind::back;
      places[i] = {isBack ? 8 : size.width - 56, area.y + 3, 44, 44};
    }
    paintRegion(Region::titleBar);
  }

  void paintStatusBar(Colour colour) {
    const double middle = isAndroid ? 19 : 32;
    const double side = isAndroid ? 18 : 34;
    canvas.write({side, middle - 12, 80, 24}, screen.time, {isAndroid ? 14.0 : 17, Weight::medium},
                 colour);
    canvas.sketch({size.width - side - 57, middle + 6.2}, 1,
                  "R 0 -5 3.6 5 1 R 5.5 -7.5 3.6 7.5 1 R 11 -10 3.6 10 1 R 16.5 -12.5 3.6 12.5 1"
                  "L 1 31 -12.5 53 -12.5 53 .5 31 .5 31 -12.5 R 33 -10.5 15 9 1 R 55 -8 2 5 1",
                  colour);
  }

  void paintTabs() {
    const std::size_t count = of(Region::tabBar).size();
    if (count == 0) return;
    const double top = size.height - homeHeight - tabsHeight;
    canvas.fill({0, top, size.width, size.height - top}, bar);
    canvas.fill({0, top, size.width, 0.67}, hairline);
    spread(Region::tabBar, {0, top, size.width, tabsHeight}, count);
    paintRegion(Region::tabBar);
  }

  void paintDialog() {
    canvas.fill({0, 0, size.width, size.height}, black, 0, 0.42);
    if (screen.hasKeyboard()) paintKeyboard();
    constexpr double width = 310;
    const double x = (size.width - width) / 2;
    const double height = stack(Region::dialog, {0, 0, width, 0});
    const double bottom = size.height - homeHeight - (screen.hasKeyboard() ? keyboardHeight : 0);
    const double y = (54 + bottom - height) / 2;
    stack(Region::dialog, {x + 24, y, width - 48, 0});
    places[of(Region::dialog).front()] = {x, y, width, height};
    paintRegion(Region::dialog);
  }

  void paintKeyboard() {
    constexpr double gap = 6;
    constexpr double pitch = (keyboardHeight - 12) / 4;
    constexpr double keyWidth = (size.width - 11 * gap) / 10;
    const double top = size.height - homeHeight - keyboardHeight;
    canvas.fill({0, top, size.width, size.height - top}, 0xD2D4DA);
    double y = top + 12;
    const auto paintKeys = [&](const std::vector<std::string_view>& labels, double width) {
      const auto count = static_cast<double>(labels.size());
      double x = (size.width - count * (width + gap) + gap) / 2;
      for (const auto label : labels) {
        canvas.fill({x, y, width, pitch - 11}, white, 5);
        canvas.write({x, y, width, pitch - 11}, label, {label.size() > 1 ? 16.0 : 22}, ink,
                     Align::centre);
        x += width + gap;
      }
      y += pitch;
    };
    paintKeys({"q", "w", "e", "r", "t", "y", "u", "i", "o", "p"}, keyWidth);
    paintKeys({"a", "s", "d", "f", "g", "h", "j", "k", "l"}, keyWidth);
    paintKeys({"z", "x", "c", "v", "b", "n", "m"}, keyWidth);
    paintKeys({"123", "space", "return"}, (size.width - 4 * gap) / 3);
  }

  /// The phone's own screen of app icons.
  void paintHomeScreen() {
    constexpr int bands = 48;
    canvas.fill({0, 0, size.width, size.height}, 0x2B4A6B);
    for (int i = 0; i < bands; ++i) {
      const double height = size.height / bands;
      canvas.fill({0, height * i, size.width, height}, 0xC98F7A, 0, i / (bands - 1.0));
    }
    paintStatusBar(white);
    spread(Region::homeScreen, {0, pageTop, size.width, 100}, 4);
    paintRegion(Region::homeScreen);
  }

  const Screen& screen;
  const Colour accent;
  const bool isAndroid;
  const double pageTop;
  Canvas canvas;
  std::vector<Rect> places;
  std::optional<Rect> target;
};

}  // namespace

PaintedScreen paint(const Screen& screen) {
  return Painting(screen).result();
}

}  // namespace corvane::standin
