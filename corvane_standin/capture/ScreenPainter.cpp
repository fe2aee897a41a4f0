#include "corvane_standin/capture/ScreenPainter.h"

#include <algorithm>
#include <array>

#include "corvane_standin/capture/ElementPainter.h"

namespace corvane::standin {

using namespace palette;

namespace {

using Align = Canvas::Align;
using Part = Target::Part;
using Weight = Font::Weight;

/// The measures of a phone, in points, and what its system and apps place around a page.
struct PhoneFrame {
  Size size;
  double statusHeight;
  double titleHeight;
  double tabsHeight;
  /// The strip at the bottom that the system keeps.
  double homeHeight;
  double keyboardHeight;
  double statusMiddle;
  double statusMargin;
  Font statusFont;
  Size homeStrip;
  bool titleInTheMiddle;
};

constexpr PhoneFrame iosFrame{.size = {390, 844},
                              .statusHeight = 54,
                              .titleHeight = 46,
                              .tabsHeight = 54,
                              .homeHeight = 30,
                              .keyboardHeight = 262,
                              .statusMiddle = 32.4,
                              .statusMargin = 34,
                              .statusFont = {17, Weight::medium},
                              .homeStrip = {136, 5},
                              .titleInTheMiddle = true};
constexpr PhoneFrame androidFrame{.size = {360, 800},
                                  .statusHeight = 36,
                                  .titleHeight = 56,
                                  .tabsHeight = 64,
                                  .homeHeight = 24,
                                  .keyboardHeight = 236,
                                  .statusMiddle = 19.8,
                                  .statusMargin = 18,
                                  .statusFont = {14, Weight::medium},
                                  .homeStrip = {108, 4},
                                  .titleInTheMiddle = false};

/// Where the elements of a page lie: buttons and bills at its foot, the others from the top down.
struct PageLayout {
  std::vector<Rect> places;
  double footTop;
};

/// Places the elements at the foot, or all others, from `y` on; gives where they end.
double placeAll(const std::vector<Element>& elements, bool atFoot, double y, double pageWidth,
                const Canvas& canvas, std::vector<Rect>& places) {
  constexpr double margin = 16;
  constexpr double gap = 12;
  const double width = pageWidth - 2 * margin;
  const double half = (width - gap) / 2;
  bool besideLast = false;
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (isAtFoot(elements[i]) != atFoot) continue;
    const double height = heightOf(elements[i], width, canvas);
    const bool isHalfWide = elements[i].kind == Element::Kind::card;
    const bool isBeside = isHalfWide && besideLast;
    places[i] = {isBeside ? margin + half + gap : margin, isBeside ? y - height : y,
                 isHalfWide ? half : width, height};
    if (!isBeside) y += height;
    besideLast = isHalfWide && !besideLast;
  }
  return y;
}

/// How far the page is moved up: to its end when it was scrolled, but never so far that the target
/// is out of sight.
double scrollOffset(const Screen& screen, const std::vector<Rect>& places, double most,
                    double visible) {
  constexpr double gap = 12;
  double offset = screen.scrolled ? most : 0;
  const auto& target = screen.target;
  if (target && target->part == Part::element && !isAtFoot(screen.elements[target->index])) {
    const Rect place = places[target->index];
    const double least = std::max(place.bottom() + gap - visible, 0.0);
    offset = std::clamp(offset, least, std::max(place.y - gap, least));
  }
  return std::min(offset, most);
}

PageLayout layOut(const Screen& screen, Rect page, const Canvas& canvas) {
  const auto& elements = screen.elements;
  PageLayout layout{std::vector<Rect>(elements.size()), page.bottom()};
  const double bodyEnd = placeAll(elements, false, 10, page.width, canvas, layout.places) + 10;
  const double footEnd = placeAll(elements, true, 10, page.width, canvas, layout.places) + 10;
  if (std::any_of(elements.begin(), elements.end(), isAtFoot)) layout.footTop -= footEnd;
  const double visible = layout.footTop - page.y;
  const double offset =
      scrollOffset(screen, layout.places, std::max(bodyEnd - visible, 0.0), visible);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    layout.places[i].y += isAtFoot(elements[i]) ? layout.footTop : page.y - offset;
  }
  return layout;
}

/// Paints one screen and notes where its target is.
class Painting {
 public:
  explicit Painting(const Screen& screen)
      : screen(screen),
        frame(screen.phone == Screen::Phone::android ? androidFrame : iosFrame),
        size(frame.size),
        canvas(frame.size, ground),
        accent(accentOf(screen.appName)),
        brush{canvas, accent, mixed(white, accent, 0.12)} {
    screen.place == Screen::Place::homeScreen ? paintHomeScreen() : paintApp();
  }

  [[nodiscard]] PaintedScreen result() const {
    if (!target) return {canvas.png(), std::nullopt};
    return {canvas.png(), Rect{target->x / size.width, target->y / size.height,
                               target->width / size.width, target->height / size.height}};
  }

 private:
  void note(Part part, std::size_t index, Rect area) {
    if (screen.target && screen.target->part == part && screen.target->index == index) {
      target = area;
    }
  }

  [[nodiscard]] Rect tabArea(std::size_t index) const {
    const double width = size.width / static_cast<double>(screen.tabs.size());
    return {width * static_cast<double>(index), size.height - frame.homeHeight - frame.tabsHeight,
            width, frame.tabsHeight};
  }

  void paintApp() {
    paintPage();
    paintTitleBar();
    paintStatusBar(ink);
    for (std::size_t i = 0; i < screen.tabs.size(); ++i) note(Part::tab, i, tabArea(i));
    if (screen.dialog) {
      if (!screen.keyboard) paintBottom();
      canvas.cover(black, 0.42);
      paintDialog(*screen.dialog);
    }
    if (!screen.dialog || screen.keyboard) paintBottom();
  }

  void paintPage() {
    double bottom = size.height - frame.homeHeight;
    // A dialog rises above the keyboard, the page behind it stays.
    if (screen.keyboard && !screen.dialog) {
      bottom -= frame.keyboardHeight;
    } else if (!screen.tabs.empty()) {
      bottom -= frame.tabsHeight;
    }
    const double top = frame.statusHeight + frame.titleHeight;
    const auto layout = layOut(screen, {0, top, size.width, bottom - top}, canvas);
    const auto paintPart = [&](bool atFoot) {
      for (std::size_t i = 0; i < screen.elements.size(); ++i) {
        const Element& element = screen.elements[i];
        const Rect place = layout.places[i];
        const bool isInSight = atFoot || (place.bottom() > top && place.y < layout.footTop);
        if (isAtFoot(element) != atFoot || !isInSight) continue;
        note(Part::element, i, paintElement(element, place, brush));
      }
    };
    paintPart(false);
    if (layout.footTop < bottom) {
      canvas.fill({0, layout.footTop, size.width, bottom - layout.footTop}, white);
      canvas.fill({0, layout.footTop, size.width, 0.67}, hairline);
    }
    paintPart(true);
  }

  void paintDialog(const Dialog& dialog) {
    const double bottom =
        size.height - frame.homeHeight - (screen.keyboard ? frame.keyboardHeight : 0);
    const double width = std::min(size.width - 72, 310.0);
    const auto lines = static_cast<double>(canvas.wrapped(dialog.text, {15}, width - 48).size());
    const double height = 72 + 22 * lines + (dialog.field ? 62 : 0) + 64;
    const Rect box{(size.width - width) / 2, (frame.statusHeight + bottom) / 2 - height / 2, width,
                   height};
    canvas.fill(box, white, 22);
    canvas.write({box.x + 20, box.y + 24, width - 40, 24}, dialog.title, {18, Weight::bold}, ink,
                 Align::centre);
    const double y = canvas.writeLines({box.x + 24, box.y + 66, width - 48, 0}, 22, dialog.text,
                                       {15}, quiet, Align::centre);
    if (dialog.field) {
      const Rect field{box.x + 24, y, width - 48, 46};
      canvas.fill(field, accent, 11);
      canvas.fill(field.inset(1.6), ground, 9.5);
      canvas.write(field.inset(14, 0), *dialog.field, {17, Weight::medium}, ink);
      note(Part::dialogField, 0, field);
    }
    const auto count = static_cast<double>(dialog.buttons.size());
    const double buttonWidth = (width - 48 - 10 * (count - 1)) / count;
    for (std::size_t i = 0; i < dialog.buttons.size(); ++i) {
      const Rect button{box.x + 24 + (buttonWidth + 10) * static_cast<double>(i), box.bottom() - 66,
                        buttonWidth, 46};
      const bool leadsOn = i + 1 == dialog.buttons.size();
      canvas.fill(button, leadsOn ? accent : brush.tint, 13);
      canvas.write(button.inset(6, 0), dialog.buttons[i], {16, Weight::medium},
                   leadsOn ? white : accent, Align::centre);
      note(Part::dialogButton, i, button);
    }
  }

  void paintStatusBar(Colour colour) {
    const double middle = frame.statusMiddle;
    canvas.write({frame.statusMargin, middle - 12, 80, 24}, screen.time, frame.statusFont, colour);
    const Colour pale = mixed(colour == white ? black : white, colour, 0.45);
    const Rect battery{size.width - frame.statusMargin - 27, middle - 6.5, 26, 13};
    canvas.fill(battery, pale, 4);
    canvas.fill(battery.inset(1.2), colour == white ? black : white, 3);
    canvas.fill({battery.x + 2.4, battery.y + 2.4, 16.5, 8.2}, colour, 2);
    canvas.fill({battery.right() + 1.4, middle - 2.5, 2, 5}, pale, 1);
    canvas.sketch({battery.x - 30, middle + 6.2}, 1,
                  "R 0 -5 3.6 5 1 R 5.5 -7.5 3.6 7.5 1 R 11 -10 3.6 10 1 R 16.5 -12.5 3.6 12.5 1",
                  colour);
  }

  void paintTitleBar() {
    const double bottom = frame.statusHeight + frame.titleHeight;
    canvas.fill({0, 0, size.width, bottom}, bar);
    canvas.fill({0, bottom - 0.67, size.width, 0.67}, hairline);
    const Rect title{0, frame.statusHeight, size.width, frame.titleHeight};
    const double middle = title.centre().y;
    if (screen.canGoBack) {
      canvas.sketch({22, middle}, 1, symbols::leftChevron, accent);
      note(Part::back, 0, {8, middle - 22, 44, 44});
    }
    if (frame.titleInTheMiddle) {
      canvas.write(title.inset(65, 0), screen.title, {17, Weight::bold}, ink, Align::centre);
    } else {
      canvas.write({screen.canGoBack ? 48.0 : 20.0, title.y, size.width - 120, title.height},
                   screen.title, {20, Weight::medium}, ink);
    }
    if (screen.hasSearchIcon) {
      const Rect icon{size.width - 56, middle - 22, 44, 44};
      canvas.sketch(icon.centre(), 1, symbols::magnifier, accent);
      note(Part::searchIcon, 0, icon);
    }
  }

  /// The tabs, or the keyboard that covers them.
  void paintBottom() {
    if (screen.keyboard) {
      paintKeyboard();
    } else if (!screen.tabs.empty()) {
      paintTabs();
    }
    const Size strip = frame.homeStrip;
    canvas.fill({(size.width - strip.width) / 2, size.height - frame.homeHeight * 0.42, strip.width,
                 strip.height},
                ink, 2.5);
  }

  void paintTabs() {
    const double top = size.height - frame.homeHeight - frame.tabsHeight;
    canvas.fill({0, top, size.width, size.height - top}, bar);
    canvas.fill({0, top, size.width, 0.67}, hairline);
    for (std::size_t i = 0; i < screen.tabs.size(); ++i) {
      const Rect area = tabArea(i);
      const bool isSelected = i == screen.selectedTab;
      const Colour colour = isSelected ? accent : quiet;
      drawTabSymbol(canvas, {area.centre().x, area.centre().y - 8}, screen.tabs[i], colour);
      canvas.write({area.x + 4, area.bottom() - 18, area.width - 8, 16}, screen.tabs[i],
                   {12, isSelected ? Weight::medium : Weight::regular}, colour, Align::centre);
    }
  }

  void paintKey(Rect area, std::string_view label, Colour face, double fontSize) {
    canvas.fill({area.x, area.y + 1.2, area.width, area.height}, 0x9FA2A8, 5);
    canvas.fill(area, face, 5);
    canvas.write(area, label, {fontSize}, ink, Align::centre);
  }

  void paintKeyboard() {
    constexpr Colour special = 0xB4B8C0;
    constexpr double gap = 6;
    const double top = size.height - frame.homeHeight - frame.keyboardHeight;
    const double pitch = (frame.keyboardHeight - 12) / 4;
    const double height = pitch - 11;
    const double keyWidth = (size.width - 11 * gap) / 10;
    canvas.fill({0, top, size.width, size.height - top}, 0xD2D4DA);
    double y = top + 12;
    for (const std::string_view row : {"qwertyuiop", "asdfghjkl", "zxcvbnm"}) {
      const auto count = static_cast<double>(row.size());
      double x = (size.width - count * keyWidth - (count - 1) * gap) / 2;
      for (const char& letter : row) {
        paintKey({x, y, keyWidth, height}, std::string_view(&letter, 1), white, 22);
        x += keyWidth + gap;
      }
      y += pitch;
    }
    const Rect shift{gap / 2, y - pitch, keyWidth * 1.25, height};
    const Rect erase{size.width - shift.width - gap / 2, shift.y, shift.width, height};
    paintKey(shift, "", special, 0);
    canvas.sketch(shift.centre(), 1, symbols::shiftKey, ink);
    paintKey(erase, "", special, 0);
    canvas.sketch({erase.centre().x - 3, erase.centre().y}, 1, symbols::leftChevron, ink);
    const double wide = size.width * 0.24;
    paintKey({gap / 2, y, wide, height}, "123", special, 16);
    paintKey({gap * 1.5 + wide, y, size.width - 2 * wide - 3 * gap, height}, "space", white, 16);
    paintKey({size.width - wide - gap / 2, y, wide, height}, "return", special, 16);
  }

  /// The phone's own screen of app icons, the screen's app being the last one.
  void paintHomeScreen() {
    struct Icon {
      std::string_view label;
      Colour colour;
    };
    const std::array<Icon, 11> icons{{{"Calendar", 0xC8453B},
                                      {"Photos", 0xE3A63B},
                                      {"Maps", 0x4C9A5B},
                                      {"Weather", 0x3F86C9},
                                      {"Notes", 0xD9C24A},
                                      {"Mail", 0x2F6FB3},
                                      {"Music", 0xB64A7E},
                                      {"Clock", 0x3A3D44},
                                      {"Files", 0x4A7FA5},
                                      {"Health", 0xD06A7A},
                                      {screen.appName, accent}}};
    constexpr std::array<Icon, 4> dockIcons{
        {{"Phone", 0x4C9A5B}, {"Browser", 0x2F6FB3}, {"Messages", 0x3A3D44}, {"Camera", 0xC8453B}}};
    constexpr double side = 62;
    constexpr std::size_t columns = 4;
    constexpr int bands = 48;
    for (int i = 0; i < bands; ++i) {
      canvas.fill({0, size.height / bands * i, size.width, size.height / bands + 1},
                  mixed(0x2B4A6B, 0xC98F7A, static_cast<double>(i) / (bands - 1)));
    }
    paintStatusBar(white);
    const double pitch = size.width / columns;
    const auto paintIcon = [&](const Icon& icon, std::size_t column, double y) {
      const Rect area{pitch * static_cast<double>(column) + (pitch - side) / 2, y, side, side};
      canvas.fill(area, icon.colour, 15);
      canvas.write(area, icon.label.substr(0, 1), {30, Weight::medium}, white, Align::centre);
      return area;
    };
    for (std::size_t i = 0; i < icons.size(); ++i) {
      const std::size_t row = i / columns;
      const Rect area = paintIcon(icons[i], i % columns,
                                  frame.statusHeight + 34 + 100 * static_cast<double>(row));
      canvas.write({area.centre().x - pitch / 2 + 4, area.bottom() + 1, pitch - 8, 24},
                   icons[i].label, {12, Weight::medium}, white, Align::centre);
      if (i + 1 == icons.size()) note(Part::appIcon, 0, area);
    }
    const Rect dock{8, size.height - frame.homeHeight - 92, size.width - 16, 86};
    canvas.fill(dock, 0xD9B8AC, 30);
    for (std::size_t i = 0; i < columns; ++i) paintIcon(dockIcons[i], i, dock.y + 12);
  }

  const Screen& screen;
  const PhoneFrame& frame;
  const Size size;
  Canvas canvas;
  const Colour accent;
  const Brush brush;
  std::optional<Rect> target;
};

}  // namespace

PaintedScreen paint(const Screen& screen) {
  return Painting(screen).result();
}

Colour accentOf(std::string_view appName) {
  constexpr std::array<Colour, 6> accents{0x1F7A6B, 0xB4532A, 0x3A5BC7,
                                          0x7A3E9D, 0xA33B5C, 0x2E6F9E};
  std::uint32_t sum = 0;
  for (const char c : appName) sum = sum * 31 + static_cast<unsigned char>(c);
  return accents[sum % accents.size()];
}

}  // namespace corvane::standin
