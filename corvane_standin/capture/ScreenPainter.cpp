#include "corvane_standin/capture/ScreenPainter.h"

#include <algorithm>
#include <array>
#include <vector>

#include "corvane_standin/capture/Pictures.h"

namespace corvane::standin {

using namespace palette;

namespace {

using enum TextStyle::Align;
using Kind = Element::Kind;

constexpr double screenWidth = 390;
constexpr double screenHeight = 844;
/// The strip at the bottom that the system keeps.
constexpr double homeHeight = 30;
constexpr double tabsHeight = 54;
constexpr double keyboardHeight = 262;
constexpr double titleHeight = 50;
constexpr double margin = 16;

constexpr TextStyle body{17};
constexpr TextStyle small{14, quiet};

/// Where on a screen the elements of a kind stand.
enum class Region { titleBar, page, foot, tabBar, dialog, homeScreen };

/// Paints one screen and notes where its target is.
class Painting {
 public:
  explicit Painting(const Screen& screen)
      : screen(screen),
        accent(accentOf(screen.appName)),
        pageTop((screen.isAndroid ? 38 : 54) + titleHeight),
        canvas(screenWidth, screenHeight, ground),
        places(screen.elements.size()) {
    screen.has(Kind::appIcon) ? paintHomeScreen() : paintApp();
  }

  [[nodiscard]] PaintedScreen result() const { return {canvas.png(), target}; }

 private:
  /// How the elements of a kind are shown.
  struct Look {
    Kind kind;
    Region region;
    double height;
    /// Left free above and below.
    double space;
    /// How many stand beside each other; none for as many as there are.
    std::size_t columns;
    /// Paints an element into its area.
    void (Painting::*paint)(const Element& element, Rect area);
  };
  static const std::array<Look, 21> looks;

  [[nodiscard]] const Look& lookOf(std::size_t i) const {
    return looks[static_cast<std::size_t>(screen.elements[i].kind)];
  }

  /// The numbers of the elements of a region.
  [[nodiscard]] std::vector<std::size_t> of(Region region) const {
    std::vector<std::size_t> numbers;
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (lookOf(i).region == region) numbers.push_back(i);
    }
    return numbers;
  }

  /// Places the elements of a region in lines below each other and gives where they end.
  double place(Region region, double x, double y, double width, double gap = 0) {
    const auto numbers = of(region);
    Rect last{x, y, 0, 0};
    for (const std::size_t i : numbers) {
      const Look& look = lookOf(i);
      const auto columns = static_cast<double>(look.columns ? look.columns : numbers.size());
      const double each = (width + gap) / columns - gap;
      const double left = last.width > 0 ? last.right() + gap : x;
      const bool isNewLine = left + each > x + width + 1;
      last = {isNewLine ? x : left, isNewLine ? last.bottom() : last.y, each, look.height};
      places[i] = last;
    }
    return last.bottom();
  }

  void paintRegion(Region region) {
    for (const std::size_t i : of(region)) {
      const Look& look = lookOf(i);
      touched = places[i].inset(0, look.space);
      (this->*look.paint)(screen.elements[i], touched);
      if (screen.target != i) continue;
      target = {touched.x / screenWidth, touched.y / screenHeight, touched.width / screenWidth,
                touched.height / screenHeight};
    }
  }

  void paintApp() {
    const bool hasDialog = screen.has(Kind::dialog);
    const bool hasKeyboard = std::ranges::any_of(
        screen.elements, [](const Element& e) { return e.takesText() && e.strong; });
    const double tabsTop = screenHeight - homeHeight - tabsHeight;
    const double keyboardTop = screenHeight - homeHeight - keyboardHeight;
    // A dialog rises above the keyboard, the page behind it stays.
    const bool hasTabs = screen.has(Kind::tab) && (hasDialog || !hasKeyboard);
    const double barTop = hasDialog || !hasKeyboard ? screenHeight - homeHeight : keyboardTop;
    paintPage(hasTabs ? tabsTop : barTop);
    paintTitleBar();
    paintStatusBar(ink);
    if (hasTabs) {
      paintBar(tabsTop, screenHeight, bar);
      place(Region::tabBar, 0, tabsTop, screenWidth);
      paintRegion(Region::tabBar);
    }
    if (hasDialog) canvas.fill({0, 0, screenWidth, screenHeight}, black, 0, 0.42);
    if (hasKeyboard) paintKeyboard(keyboardTop);
    if (hasDialog) paintOverlay(hasKeyboard ? keyboardTop : screenHeight - homeHeight);
    canvas.fill({(screenWidth - 136) / 2, screenHeight - 13, 136, 5}, ink, 2.5);
  }

  /// Across the whole screen, with a line at its upper edge.
  void paintBar(double top, double bottom, Colour colour) {
    canvas.fill({0, top, screenWidth, bottom - top}, colour);
    canvas.fill({0, top, screenWidth, 0.67}, hairline);
  }

  /// The page, moved to its end when it was scrolled, but never so far that the target is out of
  /// sight.
  void paintPage(double bottom) {
    constexpr double gap = 10;
    constexpr double width = screenWidth - 2 * margin;
    const double footHeight = place(Region::foot, margin, 0, width);
    const double footTop = footHeight > 0 ? bottom - footHeight - 2 * gap : bottom;
    place(Region::foot, margin, footTop + gap, width);
    const double most =
        std::max(place(Region::page, margin, pageTop + gap, width, 12) + gap - footTop, 0.0);
    double offset = screen.scrolled ? most : 0;
    if (screen.target && lookOf(*screen.target).region == Region::page) {
      const Rect area = places[*screen.target];
      const double least = std::max(area.bottom() + gap - footTop, 0.0);
      offset = std::clamp(offset, least, std::max(area.y - gap - pageTop, least));
    }
    place(Region::page, margin, pageTop + gap - std::min(offset, most), width, 12);
    paintRegion(Region::page);
    if (footHeight == 0) return;
    paintBar(footTop, bottom, white);
    paintRegion(Region::foot);
  }

  void paintTitleBar() {
    canvas.fill({0, 0, screenWidth, pageTop}, hairline);
    canvas.fill({0, 0, screenWidth, pageTop - 0.67}, bar);
    const double start = screen.isAndroid ? (screen.has(Kind::back) ? 52 : margin) : 65;
    canvas.write({start, pageTop - titleHeight, screenWidth - start - 65, titleHeight},
                 screen.title,
                 {screen.isAndroid ? 20.0 : 17, ink, screen.isAndroid ? left : centre, true});
    paintRegion(Region::titleBar);
  }

  void paintStatusBar(Colour colour) {
    const double middle = screen.isAndroid ? 19 : 32;
    const double side = screen.isAndroid ? 18 : 34;
    canvas.write({side, middle - 12, 80, 24}, screen.time, {screen.isAndroid ? 14.0 : 17, colour});
    canvas.sketch({screenWidth - side - 57, middle + 6.2}, 1, pictures::status, colour);
  }

  void paintOverlay(double bottom) {
    constexpr double width = 310;
    const double x = (screenWidth - width) / 2;
    const double height = place(Region::dialog, 0, 0, width);
    const double y = (54 + bottom - height) / 2;
    place(Region::dialog, x + 24, y, width - 48, 12);
    places[of(Region::dialog).front()] = {x, y, width, height};
    paintRegion(Region::dialog);
  }

  void paintKeyboard(double top) {
    constexpr double gap = 6;
    constexpr double pitch = (keyboardHeight - 12) / 4;
    constexpr std::string_view lines[]{"q w e r t y u i o p", "a s d f g h j k l", "z x c v b n m",
                                       "123 space return"};
    canvas.fill({0, top, screenWidth, screenHeight - top}, 0xD2D4DA);
    Rect key{0, top + 12, 0, pitch - 11};
    for (const auto line : lines) {
      const auto labels = split(line);
      const auto count = static_cast<double>(labels.size());
      key.width = (screenWidth - gap) / (count > 3 ? 10 : 3) - gap;
      key.x = (screenWidth - count * (key.width + gap) + gap) / 2;
      for (const auto label : labels) {
        canvas.fill(key, white, 5);
        canvas.write(key, label, {label.size() > 1 ? 16.0 : 22, ink, centre});
        key.x += key.width + gap;
      }
      key.y += pitch;
    }
  }

  /// The phone's own screen of app icons.
  void paintHomeScreen() {
    canvas.sketch({0, 0}, 1, pictures::wallpaper);
    paintStatusBar(white);
    place(Region::homeScreen, 0, pageTop, screenWidth);
    paintRegion(Region::homeScreen);
  }

  /// Writes the label at the left end of `area` and the detail at the right one.
  void writePair(Rect area, const Element& element, TextStyle label, TextStyle detail) {
    detail.align = right;
    area.width -= canvas.write(area, element.detail, detail).x + 10;
    canvas.write(area, element.label, label);
  }

  /// Goods or a route on a map.
  void paintItem(Rect tile, double radius, const Element& element) {
    const auto& picture = pictures::of(pictures::items, element.label);
    const double side = std::min(tile.width, tile.height);
    const Point corner{tile.centre().x - side / 2, tile.centre().y - side / 2};
    canvas.fill(tile, picture.ground, radius);
    if (picture.ground == pictures::mapGround) canvas.sketch(corner, side, pictures::land);
    canvas.sketch(corner, side, picture.shapes, accent);
  }

  void paintIcon(const Element& element, Rect) {
    const bool isBack = element.kind == Kind::back;
    touched = {isBack ? 0 : screenWidth - 56, pageTop - titleHeight + 3, 44, 44};
    canvas.sketch(touched.centre(), 1, isBack ? pictures::leftChevron : pictures::magnifier,
                  accent);
  }

  /// A box to type into, with a frame and a caret while it is in use. Only a field on a page has
  /// its name above it, and only one to search has it inside.
  void paintInput(const Element& element, Rect box) {
    if (element.kind == Kind::field) {
      canvas.write({box.x + 2, box.y, box.width, 24}, element.label, small);
      box = {box.x, box.y + 24, box.width, box.height - 34};
    }
    const double frame = element.strong ? 2 : 1;
    canvas.fill(box, element.strong ? accent : hairline, 12);
    canvas.fill(box.inset(frame, frame), white, 11);
    Rect text = box.inset(14, 0);
    if (element.kind == Kind::searchField) {
      canvas.sketch({box.x + 22, box.centre().y}, 1, pictures::magnifier, quiet);
      text = {box.x + 42, box.y, box.width - 56, box.height};
      if (element.detail.empty()) canvas.write(text.inset(4, 0), element.label, {17, quiet});
    }
    const double used = canvas.write(text, element.detail, body).x;
    if (element.strong) canvas.fill({text.x + 1 + used, text.centre().y - 11, 2, 22}, accent);
    touched = box;
  }

  /// A heading, a paragraph or a line of a bill.
  void paintLine(const Element& element, Rect area) {
    const bool isHeading = element.kind == Kind::heading;
    TextStyle style{17, quiet, left, false, element.kind == Kind::paragraph ? 3 : 1};
    if (isHeading || element.strong) style = {isHeading ? 22.0 : 20, ink, left, true};
    writePair(area, element, style, style);
  }

  void paintCard(const Element& element, Rect area) {
    canvas.fill({area.x, area.y + 1.5, area.width, area.height}, hairline, 16);
    canvas.fill(area, white, 16);
    paintItem({area.x + 8, area.y + 8, area.width - 16, area.height - 66}, 10, element);
    const Rect text{area.x + 12, area.bottom() - 52, area.width - 24, 24};
    canvas.write(text, element.label, {15});
    canvas.write({text.x, text.y + 22, text.width, 24}, element.detail, small);
  }

  void paintRow(const Element& element, Rect row) {
    if (!element.buttonUnder.empty()) {
      constexpr double uncovered = 104;
      canvas.fill(row, danger, 14);
      touched = {row.right() - uncovered, row.y, uncovered, row.height};
      canvas.write(touched.inset(6, 0), element.buttonUnder, {17, white, centre});
      row = {row.x - 16, row.y, row.width - uncovered + 8, row.height};
    }
    canvas.fill(row, white, 14);
    double textLeft = row.x + 16;
    if (element.kind == Kind::item) {
      paintItem({row.x + 8, row.y + 8, row.height - 16, row.height - 16}, 9, element);
      textLeft += row.height - 10;
    }
    const Point end{row.right() - 16, row.centre().y};
    element.strong ? canvas.sketch({end.x - 8, end.y}, 16, pictures::tick, accent)
                   : canvas.sketch(end, 1, pictures::rightChevron, disabled);
    writePair({textLeft, row.y, end.x - 22 - textLeft, row.height}, element, body, small);
  }

  void paintToggle(const Element& element, Rect row) {
    canvas.fill(row, white, 14);
    canvas.write({row.x + 16, row.y, row.width - 97, row.height}, element.label, body);
    touched = {row.right() - 67, row.centre().y - 15, 51, 31};
    canvas.fill(touched, element.strong ? accent : disabled, 15.5);
    const double knob = element.strong ? touched.right() - 15.5 : touched.x + 15.5;
    canvas.circle({knob, touched.centre().y}, 13.5, white);
  }

  void paintSlider(const Element& element, Rect box) {
    canvas.fill(box, white, 14);
    writePair({box.x + 16, box.y + 10, box.width - 32, 24}, element, body, small);
    const Rect track{box.x + 28, box.bottom() - 30, box.width - 56, 4};
    const double handle = track.x + track.width * (element.strong ? 0.5 : 0.92);
    canvas.fill(track, hairline, 2);
    canvas.fill({track.x, track.y, handle - track.x, 4}, accent, 2);
    for (const double x : {track.x, handle}) {
      canvas.circle({x, track.centre().y}, 13.5, disabled);
      canvas.circle({x, track.centre().y}, 13, white);
    }
    touched = {handle - 13, track.centre().y - 13, 26, 26};
  }

  /// One with a detail has a caption.
  void paintPicture(const Element& element, Rect area) {
    paintItem(area, 18, element);
    if (element.detail.empty()) return;
    const Rect caption{area.x + 12, area.bottom() - 76, area.width - 24, 64};
    canvas.fill(caption, white, 14);
    writePair(caption.inset(18, 0), element, body, {24, accent, right, true});
  }

  void paintNotice(const Element& element, Rect area) {
    const Point sign{area.centre().x, area.y + area.height * 0.4};
    canvas.circle(sign, 46, element.strong ? accent : quiet, 0.12);
    element.strong ? canvas.sketch(sign, 44, pictures::tick, accent)
                   : canvas.sketch({sign.x, sign.y + 4}, 1.6, pictures::tabs[0].shapes, quiet);
    Rect text{area.x + 25, sign.y + 70, area.width - 50, 0};
    text.y += canvas.write(text, element.label, {20, ink, centre, true, 2}).y + 6;
    canvas.write(text, element.detail, {17, quiet, centre, false, 4});
  }

  void paintButton(const Element& element, Rect area) {
    const bool isFilled = !element.enabled || element.strong;
    canvas.fill(area, element.enabled ? accent : disabled, 14, isFilled ? 1 : 0.12);
    canvas.write(area.inset(12, 0), element.label, {17, isFilled ? white : accent, centre});
  }

  void paintRoundButton(const Element& element, Rect area) {
    touched = {area.centre().x - 34, area.centre().y - 44, 68, 68};
    canvas.circle(touched.centre(), 34, element.enabled ? accent : disabled);
    canvas.circle(touched.centre(), 12, white);
    canvas.write({area.x, touched.bottom() + 2, area.width, 24}, element.label,
                 {14, accent, centre});
  }

  void paintTab(const Element& element, Rect area) {
    const Colour colour = element.strong ? accent : quiet;
    canvas.sketch({area.centre().x, area.centre().y - 8}, 1,
                  pictures::of(pictures::tabs, element.label).shapes, colour);
    canvas.write({area.x + 4, area.bottom() - 18, area.width - 8, 16}, element.label,
                 {12, colour, centre});
  }

  void paintDialog(const Element& element, Rect box) {
    canvas.fill(box, white, 22);
    const Rect text = box.inset(22, 24);
    canvas.write({text.x, text.y, text.width, 24}, element.label, {18, ink, centre, true});
    canvas.write({text.x, text.y + 34, text.width, 0}, element.detail,
                 {15, quiet, centre, false, 2});
  }

  void paintAppIcon(const Element& element, Rect area) {
    touched = {area.centre().x - 31, area.y, 62, 62};
    canvas.fill(touched, accentOf(element.label), 15);
    canvas.write(touched, element.label.substr(0, 1), {30, white, centre});
    canvas.write({area.x + 4, touched.bottom() + 1, area.width - 8, 24}, element.label,
                 {12, white, centre});
  }

  const Screen& screen;
  const Colour accent;
  const double pageTop;
  Canvas canvas;
  std::vector<Rect> places;
  /// Where a finger would touch the element that was painted last.
  Rect touched;
  std::optional<Rect> target;
};

/// In the order of Element::Kind.
constexpr std::array<Painting::Look, 21> Painting::looks{{
    {Kind::back, Region::titleBar, 44, 0, 1, &Painting::paintIcon},
    {Kind::searchIcon, Region::titleBar, 44, 0, 1, &Painting::paintIcon},
    {Kind::searchField, Region::page, 52, 4, 1, &Painting::paintInput},
    {Kind::heading, Region::page, 46, 0, 1, &Painting::paintLine},
    {Kind::paragraph, Region::page, 86, 0, 1, &Painting::paintLine},
    {Kind::card, Region::page, 218, 6, 2, &Painting::paintCard},
    {Kind::item, Region::page, 76, 3, 1, &Painting::paintRow},
    {Kind::row, Region::page, 56, 3, 1, &Painting::paintRow},
    {Kind::field, Region::page, 82, 0, 1, &Painting::paintInput},
    {Kind::toggle, Region::page, 58, 3, 1, &Painting::paintToggle},
    {Kind::slider, Region::page, 96, 3, 1, &Painting::paintSlider},
    {Kind::picture, Region::page, 380, 6, 1, &Painting::paintPicture},
    {Kind::notice, Region::page, 380, 0, 1, &Painting::paintNotice},
    {Kind::amount, Region::foot, 34, 0, 1, &Painting::paintLine},
    {Kind::button, Region::foot, 62, 5, 1, &Painting::paintButton},
    {Kind::roundButton, Region::foot, 112, 0, 1, &Painting::paintRoundButton},
    {Kind::tab, Region::tabBar, tabsHeight, 0, 0, &Painting::paintTab},
    {Kind::dialog, Region::dialog, 126, 0, 1, &Painting::paintDialog},
    {Kind::dialogField, Region::dialog, 62, 8, 1, &Painting::paintInput},
    {Kind::dialogButton, Region::dialog, 70, 10, 2, &Painting::paintButton},
    {Kind::appIcon, Region::homeScreen, 100, 0, 4, &Painting::paintAppIcon},
}};

}  // namespace

Colour accentOf(std::string_view appName) {
  constexpr Colour accents[]{0x1F7A6B, 0xB4532A, 0x3A5BC7, 0x7A3E9D, 0xA33B5C, 0x2E6F9E};
  std::uint32_t sum = 0;
  for (const char c : appName) sum = sum * 31 + static_cast<unsigned char>(c);
  return accents[sum % std::size(accents)];
}

PaintedScreen paint(const Screen& screen) {
  return Painting(screen).result();
}

}  // namespace corvane::standin
