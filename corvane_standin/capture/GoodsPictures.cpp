#include "corvane_standin/capture/GoodsPictures.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

namespace {

/// Draws in a square tile whose sides are 1 long.
class Tile {
 public:
  Tile(Canvas& canvas, Rect area) : canvas(canvas), area(area) {}

  void box(Rect part, double radius, Colour colour) const {
    canvas.fillRounded(
        {at({part.x, 0}).x, at({0, part.y}).y, part.width * unit(), part.height * unit()},
        radius * unit(), colour);
  }
  void circle(Point centre, double radius, Colour colour) const {
    canvas.fillCircle(at(centre), radius * unit(), colour);
  }
  void ring(Point centre, double radius, double width, Colour colour) const {
    canvas.drawRing(at(centre), radius * unit(), width * unit(), colour);
  }
  void shape(std::vector<Point> corners, Colour colour) const {
    for (auto& corner : corners) corner = at(corner);
    canvas.fillPolygon(corners, colour);
  }
  void lines(std::vector<Point> points, double width, Colour colour) const {
    for (auto& point : points) point = at(point);
    canvas.drawLines(points, width * unit(), colour);
  }

 private:
  [[nodiscard]] double unit() const { return std::min(area.width, area.height); }
  [[nodiscard]] Point at(Point inUnits) const {
    const Point corner = area.centre() - Point{unit() / 2, unit() / 2};
    return corner + inUnits * unit();
  }

  Canvas& canvas;
  Rect area;
};

void drawMug(const Tile& tile) {
  constexpr Colour enamel = rgb(0xF7F5EE);
  constexpr Colour rim = rgb(0x2F4A7A);
  tile.ring({0.68, 0.52}, 0.11, 0.05, enamel);
  tile.box({0.28, 0.3, 0.4, 0.46}, 0.07, enamel);
  tile.box({0.26, 0.27, 0.44, 0.06}, 0.03, rim);
  tile.box({0.36, 0.44, 0.05, 0.2}, 0.025, rgb(0xE4E0D4));
}

void drawApron(const Tile& tile) {
  constexpr Colour cloth = rgb(0x8C6A4A);
  tile.ring({0.5, 0.26}, 0.11, 0.025, rgb(0x5E4630));
  tile.lines({{0.34, 0.52}, {0.18, 0.58}}, 0.025, rgb(0x5E4630));
  tile.lines({{0.66, 0.52}, {0.82, 0.58}}, 0.025, rgb(0x5E4630));
  tile.shape({{0.39, 0.3}, {0.61, 0.3}, {0.7, 0.5}, {0.73, 0.84}, {0.27, 0.84}, {0.3, 0.5}}, cloth);
  tile.box({0.38, 0.56, 0.24, 0.15}, 0.03, rgb(0x795A3D));
}

void drawLinen(const Tile& tile) {
  constexpr std::array cloths{rgb(0xD9CDB8), rgb(0xB9C4B4), rgb(0xF0E9DC)};
  for (std::size_t i = 0; i < cloths.size(); ++i) {
    const double y = 0.6 - 0.15 * static_cast<double>(i);
    tile.box({0.2, y, 0.6, 0.14}, 0.06, cloths[i]);
    tile.box({0.28, y, 0.03, 0.14}, 0, mixed(cloths[i], black, 0.18));
  }
}

void drawBowl(const Tile& tile) {
  constexpr Colour clay = rgb(0x4F6D7A);
  std::vector<Point> body{{0.2, 0.46}};
  for (int degrees = 180; degrees >= 0; degrees -= 6) {
    const double angle = degrees * std::numbers::pi / 180;
    body.push_back({0.5 + 0.3 * std::cos(angle), 0.46 + 0.27 * std::sin(angle)});
  }
  tile.box({0.4, 0.7, 0.2, 0.07}, 0.02, mixed(clay, black, 0.25));
  tile.shape(body, clay);
  tile.box({0.17, 0.42, 0.66, 0.06}, 0.03, mixed(clay, white, 0.3));
}

void drawCandle(const Tile& tile) {
  tile.box({0.37, 0.38, 0.26, 0.42}, 0.03, rgb(0xE9BE5A));
  tile.box({0.37, 0.38, 0.09, 0.42}, 0.03, rgb(0xF3D184));
  tile.lines({{0.5, 0.38}, {0.5, 0.32}}, 0.02, rgb(0x4A3A24));
  tile.circle({0.5, 0.27}, 0.05, rgb(0xE8742C));
  tile.shape({{0.455, 0.25}, {0.5, 0.14}, {0.545, 0.25}}, rgb(0xE8742C));
}

void drawBasket(const Tile& tile) {
  constexpr Colour willow = rgb(0xB07C44);
  tile.ring({0.5, 0.44}, 0.22, 0.035, mixed(willow, black, 0.25));
  tile.shape({{0.2, 0.44}, {0.8, 0.44}, {0.72, 0.8}, {0.28, 0.8}}, willow);
  for (const double y : {0.53, 0.62, 0.71}) {
    tile.lines({{0.25, y}, {0.75, y}}, 0.018, mixed(willow, black, 0.3));
  }
  tile.box({0.18, 0.42, 0.64, 0.06}, 0.03, mixed(willow, white, 0.25));
}

void drawLamp(const Tile& tile) {
  tile.lines({{0.5, 0.78}, {0.5, 0.46}}, 0.03, rgb(0x3B3B40));
  tile.box({0.34, 0.77, 0.32, 0.05}, 0.025, rgb(0x3B3B40));
  tile.shape({{0.39, 0.2}, {0.61, 0.2}, {0.74, 0.5}, {0.26, 0.5}}, rgb(0xF2C14E));
  tile.shape({{0.39, 0.2}, {0.47, 0.2}, {0.41, 0.5}, {0.26, 0.5}}, rgb(0xF7D583));
}

void drawPlanter(const Tile& tile) {
  constexpr Colour leaf = rgb(0x4E8A4A);
  tile.shape({{0.5, 0.6}, {0.3, 0.46}, {0.26, 0.24}, {0.46, 0.4}}, leaf);
  tile.shape({{0.5, 0.6}, {0.7, 0.46}, {0.74, 0.24}, {0.54, 0.4}}, mixed(leaf, black, 0.15));
  tile.shape({{0.5, 0.6}, {0.42, 0.36}, {0.5, 0.16}, {0.58, 0.36}}, mixed(leaf, white, 0.2));
  tile.shape({{0.31, 0.58}, {0.69, 0.58}, {0.63, 0.84}, {0.37, 0.84}}, rgb(0xC06B45));
  tile.box({0.28, 0.55, 0.44, 0.08}, 0.02, rgb(0xCF7E58));
}

void drawBottle(const Tile& tile) {
  constexpr Colour glass = rgb(0x5FA39A);
  tile.box({0.44, 0.16, 0.12, 0.24}, 0.03, glass);
  tile.box({0.35, 0.34, 0.3, 0.48}, 0.09, glass);
  tile.box({0.42, 0.14, 0.16, 0.06}, 0.02, rgb(0xB98A56));
  tile.box({0.35, 0.52, 0.3, 0.16}, 0, rgb(0xF4F0E4));
}

struct GoodsPicture {
  std::string_view word;
  Colour ground;
  void (*draw)(const Tile&);
};

constexpr std::array pictures{
    GoodsPicture{"mug", rgb(0xBFD3E6), drawMug},
    GoodsPicture{"apron", rgb(0xEBDCC8), drawApron},
    GoodsPicture{"linen", rgb(0xC9D6CF), drawLinen},
    GoodsPicture{"bowl", rgb(0xEAD7CF), drawBowl},
    GoodsPicture{"candle", rgb(0xDCE3D0), drawCandle},
    GoodsPicture{"basket", rgb(0xF1E4C6), drawBasket},
    GoodsPicture{"lamp", rgb(0xCDD3E3), drawLamp},
    GoodsPicture{"plant", rgb(0xE6E0EE), drawPlanter},
    GoodsPicture{"bottle", rgb(0xF0D9D6), drawBottle},
};

std::uint32_t numberOf(std::string_view name) {
  std::uint32_t sum = 7;
  for (const char c : name) sum = sum * 131 + static_cast<unsigned char>(c);
  return sum;
}

const GoodsPicture& pictureOf(std::string_view name) {
  const std::string words = asciiLowercase(name);
  for (const auto& picture : pictures) {
    if (words.find(picture.word) != std::string::npos) return picture;
  }
  return pictures[numberOf(name) % pictures.size()];
}

}  // namespace

void drawGoods(Canvas& canvas, Rect tile, double radius, std::string_view name) {
  const auto& picture = pictureOf(name);
  canvas.fillRounded(tile, radius, picture.ground);
  picture.draw(Tile(canvas, tile));
}

void drawRoute(Canvas& canvas, Rect tile, double radius, std::string_view name, Colour route) {
  constexpr Colour meadow = rgb(0xDCE8D2);
  constexpr Colour water = rgb(0xB5D3E0);
  constexpr Colour road = rgb(0xF7F6F1);
  canvas.fillRounded(tile, radius, meadow);
  const Rect inner = tile.inset(std::max(radius * 0.4, tile.width * 0.04));
  const auto at = [inner](double x, double y) {
    return Point{inner.x + inner.width * x, inner.y + inner.height * y};
  };
  const double unit = std::min(tile.width, tile.height);
  canvas.fillRounded({at(0.58, 0).x, at(0, 0.06).y, inner.width * 0.34, inner.height * 0.26},
                     unit * 0.1, water);
  const double roadWidth = std::min(unit * 0.05, 12.0);
  for (const auto& [from, to] :
       {std::pair(Point{0, 0.26}, Point{1, 0.44}), std::pair(Point{0.36, 0}, Point{0.26, 1})}) {
    const bool runsDown = from.y == 0;
    const Point side = runsDown ? Point{roadWidth / 2, 0} : Point{0, roadWidth / 2};
    const auto place = [&](Point share) {
      return Point{tile.x + tile.width * share.x, tile.y + tile.height * share.y};
    };
    canvas.fillPolygon(
        std::array{place(from) - side, place(from) + side, place(to) + side, place(to) - side},
        road);
  }
  std::vector<Point> way;
  const std::uint32_t number = numberOf(name);
  constexpr int turns = 48;
  for (int i = 0; i <= turns; ++i) {
    const double share = static_cast<double>(i) / turns;
    const double sway = std::sin(share * (5 + number % 3) + number % 7) * 0.14 +
                        std::sin(share * 11 + number % 5) * 0.05;
    way.push_back(at(0.14 + 0.72 * share, 0.78 - 0.5 * share + sway));
  }
  const double width = std::min(unit * 0.045, 7.0);
  canvas.drawLines(way, width, route);
  canvas.fillCircle(way.front(), width * 1.1, white);
  canvas.fillCircle(way.front(), width * 0.7, route);
  canvas.fillCircle(way.back(), width * 1.4, route);
}

}  // namespace corvane::standin
