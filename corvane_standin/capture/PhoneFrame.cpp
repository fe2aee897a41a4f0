#include "corvane_standin/capture/PhoneFrame.h"

#include <array>
#include <string_view>

#include "corvane_standin/capture/Symbols.h"

namespace corvane::standin {

namespace {

using Weight = Font::Weight;

constexpr Colour barColour = rgb(0xFBFAF8);

void paintSignal(Canvas& canvas, Point leftBottom, Colour ink) {
  constexpr std::array heights{5.0, 7.5, 10.0, 12.5};
  for (std::size_t i = 0; i < heights.size(); ++i) {
    const double x = leftBottom.x + 5.5 * static_cast<double>(i);
    canvas.fillRounded({x, leftBottom.y - heights[i], 3.6, heights[i]}, 1, ink);
  }
}

void paintBattery(Canvas& canvas, Rect area, Colour ink, Colour ground) {
  constexpr double charge = 0.78;
  canvas.fillRounded(area, 4, mixed(ground, ink, 0.45));
  canvas.fillRounded(area.inset(1.2), 3, ground);
  Rect level = area.inset(2.4);
  level.width *= charge;
  canvas.fillRounded(level, 2, ink);
  canvas.fillRounded({area.right() + 1.4, area.centre().y - 2.5, 2, 5}, 1,
                     mixed(ground, ink, 0.45));
}

}  // namespace

PhoneFrame PhoneFrame::of(Screen::Phone phone) {
  if (phone == Screen::Phone::android) {
    return {.size = {360, 800},
            .statusHeight = 36,
            .titleHeight = 56,
            .tabsHeight = 64,
            .homeHeight = 24,
            .keyboardHeight = 236,
            .titleInTheMiddle = false};
  }
  return {.size = {390, 844},
          .statusHeight = 54,
          .titleHeight = 46,
          .tabsHeight = 54,
          .homeHeight = 30,
          .keyboardHeight = 262,
          .titleInTheMiddle = true};
}

Rect PhoneFrame::pageOf(const Screen& screen) const {
  const double top = statusHeight + titleHeight;
  double bottom = size.height - homeHeight;
  // A dialog rises above the keyboard, the page behind it stays.
  if (screen.keyboard && !screen.dialog) {
    bottom -= keyboardHeight;
  } else if (!screen.tabs.empty()) {
    bottom -= tabsHeight;
  }
  return {0, top, size.width, bottom - top};
}

Rect PhoneFrame::dialogSpace(const Screen& screen) const {
  const double bottom = size.height - homeHeight - (screen.keyboard ? keyboardHeight : 0);
  return {0, statusHeight, size.width, bottom - statusHeight};
}

Rect PhoneFrame::tabArea(const Screen& screen, std::size_t index) const {
  const double width = size.width / static_cast<double>(screen.tabs.size());
  return {width * static_cast<double>(index), size.height - homeHeight - tabsHeight, width,
          tabsHeight};
}

Rect PhoneFrame::searchIconArea() const {
  return {size.width - 56, statusHeight + titleHeight / 2 - 22, 44, 44};
}

Rect PhoneFrame::backArea() const {
  return {8, statusHeight + titleHeight / 2 - 22, 44, 44};
}

void PhoneFrame::paintStatusBar(const Screen& screen, Colour ink, const Brush& brush) const {
  const double middle = titleInTheMiddle ? statusHeight * 0.6 : statusHeight * 0.55;
  const Font font{titleInTheMiddle ? 17.0 : 14.0, Weight::medium};
  const double margin = titleInTheMiddle ? 34 : 18;
  brush.line(margin, middle, 80, screen.time, font, ink);
  const Colour ground = ink == white ? black : white;
  const Rect battery{size.width - margin - 27, middle - 6.5, 26, 13};
  paintBattery(brush.canvas, battery, ink, ground);
  paintSignal(brush.canvas, {battery.x - 30, middle + 6.2}, ink);
}

void PhoneFrame::paintTitleBar(const Screen& screen, const Brush& brush) const {
  const double bottom = statusHeight + titleHeight;
  const auto& look = brush.look;
  brush.canvas.fill({0, 0, size.width, bottom}, barColour);
  brush.canvas.fill({0, bottom - 0.67, size.width, 0.67}, look.line);
  const double middle = statusHeight + titleHeight / 2;
  if (screen.canGoBack) drawChevron(brush.canvas, {22, middle}, true, look.accent);
  if (titleInTheMiddle) {
    const Font font{17, Weight::bold};
    const auto title = brush.letters.cut(screen.title, font, size.width - 130);
    brush.centred({size.width / 2, middle}, title, font, look.ink);
  } else {
    brush.line(screen.canGoBack ? 48 : 20, middle, size.width - 120, screen.title,
               {20, Weight::medium}, look.ink);
  }
  if (screen.hasSearchIcon) drawMagnifier(brush.canvas, searchIconArea().centre(), look.accent);
}

void PhoneFrame::paintBottom(const Screen& screen, const Brush& brush) const {
  if (screen.keyboard) {
    paintKeyboard(brush);
  } else if (!screen.tabs.empty()) {
    paintTabs(screen, brush);
  }
  paintHomeStrip(brush.look.ink, brush);
}

void PhoneFrame::paintTabs(const Screen& screen, const Brush& brush) const {
  const double top = size.height - homeHeight - tabsHeight;
  brush.canvas.fill({0, top, size.width, size.height - top}, barColour);
  brush.canvas.fill({0, top, size.width, 0.67}, brush.look.line);
  for (std::size_t i = 0; i < screen.tabs.size(); ++i) {
    const Rect area = tabArea(screen, i);
    const bool isSelected = i == screen.selectedTab;
    const Colour colour = isSelected ? brush.look.accent : brush.look.quiet;
    drawTabSymbol(brush.canvas, {area.centre().x, top + tabsHeight / 2 - 8}, screen.tabs[i],
                  colour);
    const Font font{12, isSelected ? Weight::medium : Weight::regular};
    brush.centred({area.centre().x, top + tabsHeight - 10},
                  brush.letters.cut(screen.tabs[i], font, area.width - 8), font, colour);
  }
}

void PhoneFrame::paintKeyboard(const Brush& brush) const {
  constexpr std::array<std::string_view, 3> rows{"qwertyuiop", "asdfghjkl", "zxcvbnm"};
  constexpr double gap = 6;
  constexpr double rowGap = 11;
  const double top = size.height - homeHeight - keyboardHeight;
  const double rowHeight = (keyboardHeight - 12 - 4 * rowGap) / 4;
  const double keyWidth = (size.width - 11 * gap) / 10;
  const auto& look = brush.look;
  const auto key = [&](Rect area, Colour face) {
    brush.canvas.fillRounded(area.moved(0, 1.2), 5, rgb(0x9FA2A8));
    brush.canvas.fillRounded(area, 5, face);
  };
  constexpr Colour plain = white;
  constexpr Colour special = rgb(0xB4B8C0);
  brush.canvas.fill({0, top, size.width, size.height - top}, rgb(0xD2D4DA));
  double y = top + 12;
  for (const auto& row : rows) {
    const auto count = static_cast<double>(row.size());
    double x = (size.width - count * keyWidth - (count - 1) * gap) / 2;
    for (const char& letter : row) {
      const Rect area{x, y, keyWidth, rowHeight};
      key(area, plain);
      brush.centred(area.centre(), std::string_view(&letter, 1), {22}, look.ink);
      x += keyWidth + gap;
    }
    y += rowHeight + rowGap;
  }
  const double lastLetters = y - rowHeight - rowGap;
  const double sideWidth = keyWidth * 1.25;
  key({gap / 2, lastLetters, sideWidth, rowHeight}, special);
  key({size.width - sideWidth - gap / 2, lastLetters, sideWidth, rowHeight}, special);
  drawChevron(brush.canvas, {size.width - sideWidth / 2 - gap, lastLetters + rowHeight / 2}, true,
              look.ink);
  const Point shift{gap / 2 + sideWidth / 2, lastLetters + rowHeight / 2};
  brush.canvas.drawLines(
      std::array{shift + Point{-8, 3}, shift + Point{0, -6}, shift + Point{8, 3}}, 2, look.ink);
  const double wide = size.width * 0.24;
  const Rect digits{gap / 2, y, wide, rowHeight};
  const Rect enter{size.width - wide - gap / 2, y, wide, rowHeight};
  const Rect space{digits.right() + gap, y, enter.x - digits.right() - 2 * gap, rowHeight};
  key(digits, special);
  key(space, plain);
  key(enter, special);
  brush.centred(digits.centre(), "123", {16}, look.ink);
  brush.centred(space.centre(), "space", {16}, look.ink);
  brush.centred(enter.centre(), "return", {16}, look.ink);
}

void PhoneFrame::paintHomeStrip(Colour ink, const Brush& brush) const {
  const double width = titleInTheMiddle ? 136 : 108;
  brush.canvas.fillRounded({(size.width - width) / 2, size.height - homeHeight * 0.42, width,
                            titleInTheMiddle ? 5.0 : 4.0},
                           2.5, ink);
}

}  // namespace corvane::standin
