#include "corvane_standin/capture/HomeScreenPainter.h"

#include <array>
#include <string_view>

#include "corvane_standin/capture/Symbols.h"

namespace corvane::standin {

namespace {

constexpr double iconSide = 62;
constexpr std::size_t columns = 4;

struct Icon {
  std::string_view label;
  Colour colour;
};

constexpr std::array icons{
    Icon{"Calendar", rgb(0xC8453B)}, Icon{"Photos", rgb(0xE3A63B)}, Icon{"Maps", rgb(0x4C9A5B)},
    Icon{"Weather", rgb(0x3F86C9)},  Icon{"Notes", rgb(0xD9C24A)},  Icon{"Mail", rgb(0x2F6FB3)},
    Icon{"Music", rgb(0xB64A7E)},    Icon{"Clock", rgb(0x3A3D44)},  Icon{"Files", rgb(0x4A7FA5)},
    Icon{"Health", rgb(0xD06A7A)},
};

void paintWallpaper(Size size, Canvas& canvas) {
  constexpr int bands = 48;
  constexpr Colour above = rgb(0x2B4A6B);
  constexpr Colour below = rgb(0xC98F7A);
  const double height = size.height / bands;
  for (int i = 0; i < bands; ++i) {
    canvas.fill({0, height * i, size.width, height + 1},
                mixed(above, below, static_cast<double>(i) / (bands - 1)));
  }
}

void paintIcon(Rect area, std::string_view label, Colour colour, const Brush& brush) {
  brush.canvas.fillRounded(area, 15, colour);
  brush.centred(area.centre(), label.substr(0, 1), {30, Font::Weight::medium}, white);
}

}  // namespace

Rect paintHomeScreen(const Screen& screen, const PhoneFrame& frame, const Brush& brush) {
  const Size size = frame.size;
  paintWallpaper(size, brush.canvas);
  frame.paintStatusBar(screen, white, brush);
  const double pitch = size.width / static_cast<double>(columns);
  const auto place = [&](std::size_t i) {
    return Rect{pitch * static_cast<double>(i % columns) + (pitch - iconSide) / 2,
                frame.statusHeight + 34 + 100 * static_cast<double>(i / columns), iconSide,
                iconSide};
  };
  const Font font{12, Font::Weight::medium};
  for (std::size_t i = 0; i <= icons.size(); ++i) {
    const bool isOurs = i == icons.size();
    const Icon icon = isOurs ? Icon{screen.appName, brush.look.accent} : icons[i];
    const Rect area = place(i);
    paintIcon(area, icon.label, icon.colour, brush);
    brush.centred({area.centre().x, area.bottom() + 13},
                  brush.letters.cut(icon.label, font, pitch - 8), font, white);
  }
  const Rect dock{8, size.height - frame.homeHeight - 92, size.width - 16, 86};
  brush.canvas.fillRounded(dock, 30, rgb(0xD9B8AC));
  for (std::size_t i = 0; i < columns; ++i) {
    const Rect area{pitch * static_cast<double>(i) + (pitch - iconSide) / 2, dock.y + 12, iconSide,
                    iconSide};
    constexpr std::array dockColours{rgb(0x4C9A5B), rgb(0x2F6FB3), rgb(0x3A3D44), rgb(0xC8453B)};
    constexpr std::array<std::string_view, columns> dockLabels{"Phone", "Browser", "Messages",
                                                               "Camera"};
    paintIcon(area, dockLabels[i], dockColours[i], brush);
  }
  return place(icons.size());
}

}  // namespace corvane::standin
