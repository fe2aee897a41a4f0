#include "corvane_standin/capture/ElementPainter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

struct GoodsPicture {
  std::string_view word;
  Colour ground;
  /// In a square whose sides are 1 long.
  std::string_view shapes;
};

constexpr std::array goodsPictures{
    GoodsPicture{"mug", 0xBFD3E6,
                 "#F7F5EE O .68 .52 .11 .05 R .28 .3 .4 .46 .07"
                 "#2F4A7A R .26 .27 .44 .06 .03 #E4E0D4 R .36 .44 .05 .2 .025"},
    GoodsPicture{"apron", 0xEBDCC8,
                 "#5E4630 O .5 .26 .11 .025 L .025 .34 .52 .18 .58 L .025 .66 .52 .82 .58"
                 "#8C6A4A P .39 .3 .61 .3 .7 .5 .73 .84 .27 .84 .3 .5"
                 "#795A3D R .38 .56 .24 .15 .03"},
    GoodsPicture{"linen", 0xC9D6CF,
                 "#D9CDB8 R .2 .6 .6 .14 .06 #B2A897 R .28 .6 .03 .14 0"
                 "#B9C4B4 R .2 .45 .6 .14 .06 #98A194 R .28 .45 .03 .14 0"
                 "#F0E9DC R .2 .3 .6 .14 .06 #C5BFB4 R .28 .3 .03 .14 0"},
    GoodsPicture{"bowl", 0xEAD7CF,
                 "#3B525C R .4 .7 .2 .07 .02 #4F6D7A H .5 .46 .3 .27"
                 "#8499A2 R .17 .42 .66 .06 .03"},
    GoodsPicture{"candle", 0xDCE3D0,
                 "#E9BE5A R .37 .38 .26 .42 .03 #F3D184 R .37 .38 .09 .42 .03"
                 "#4A3A24 L .02 .5 .38 .5 .32 #E8742C C .5 .27 .05 P .455 .25 .5 .14 .545 .25"},
    GoodsPicture{"basket", 0xF1E4C6,
                 "#845D33 O .5 .44 .22 .035 #B07C44 P .2 .44 .8 .44 .72 .8 .28 .8"
                 "#7B5730 L .018 .25 .53 .75 .53 L .018 .25 .62 .75 .62 L .018 .25 .71 .75 .71"
                 "#C49D73 R .18 .42 .64 .06 .03"},
    GoodsPicture{"lamp", 0xCDD3E3,
                 "#3B3B40 L .03 .5 .78 .5 .46 R .34 .77 .32 .05 .025"
                 "#F2C14E P .39 .2 .61 .2 .74 .5 .26 .5 #F7D583 P .39 .2 .47 .2 .41 .5 .26 .5"},
    GoodsPicture{"plant", 0xE6E0EE,
                 "#4E8A4A P .5 .6 .3 .46 .26 .24 .46 .4 #42753F P .5 .6 .7 .46 .74 .24 .54 .4"
                 "#71A16E P .5 .6 .42 .36 .5 .16 .58 .36"
                 "#C06B45 P .31 .58 .69 .58 .63 .84 .37 .84 #CF7E58 R .28 .55 .44 .08 .02"},
    GoodsPicture{"bottle", 0xF0D9D6,
                 "#5FA39A R .44 .16 .12 .24 .03 R .35 .34 .3 .48 .09"
                 "#B98A56 R .42 .14 .16 .06 .02 #F4F0E4 R .35 .52 .3 .16 0"},
};

struct TabSymbol {
  /// Parts of a tab's name, separated by spaces.
  std::string_view words;
  std::string_view shapes;
};

constexpr std::array tabSymbols{
    TabSymbol{"cart basket bag", "L 2 -9 -4 9 -4 8 10 -8 10 -9 -4 A 0 -4 5 2"},
    TabSymbol{"shop home start", "L 2 -11 0 0 -10 11 0 L 2 -8 -2 -8 10 8 10 8 -2"},
    TabSymbol{"account profile me you", "O 0 -5 5 2 A 0 10 9 2"},
    TabSymbol{"setting option filter",
              "L 2 -10 -7 10 -7 C -4 -7 3.2 L 2 -10 0 10 0 C 5 0 3.2 L 2 -10 7 10 7 C -1 7 3.2"},
    TabSymbol{"map route near", "O 0 -3 7.5 2 L 2 -5 2.6 0 10 5 2.6 C 0 -3 2.4"},
    TabSymbol{"search find", symbols::magnifier},
};
constexpr std::string_view otherTabSymbol =
    "C -9 -7 1.6 L 2 -4 -7 10 -7 C -9 0 1.6 L 2 -4 0 10 0 C -9 7 1.6 L 2 -4 7 10 7";

std::uint32_t numberOf(std::string_view name) {
  std::uint32_t sum = 7;
  for (const char c : name) sum = sum * 131 + static_cast<unsigned char>(c);
  return sum;
}

bool hasOneOf(std::string_view name, std::string_view words) {
  return std::ranges::any_of(split(words), [name](std::string_view word) {
    return name.find(word) != std::string_view::npos;
  });
}

}  // namespace

void drawGoods(Canvas& canvas, Rect tile, double radius, std::string_view name) {
  const std::string words = asciiLowercase(name);
  const auto* found =
      std::find_if(goodsPictures.begin(), goodsPictures.end(),
                   [&words](const auto& each) { return hasOneOf(words, each.word); });
  if (found == goodsPictures.end()) found = &goodsPictures[numberOf(name) % goodsPictures.size()];
  canvas.fill(tile, found->ground, radius);
  const double side = std::min(tile.width, tile.height);
  const Point centre = tile.centre();
  canvas.sketch({centre.x - side / 2, centre.y - side / 2}, side, found->shapes);
}

void drawRoute(Canvas& canvas, Rect tile, double radius, std::string_view name, Colour route) {
  constexpr Colour meadow = 0xDCE8D2;
  constexpr Colour water = 0xB5D3E0;
  constexpr Colour road = 0xF7F6F1;
  canvas.fill(tile, meadow, radius);
  const Rect inner = tile.inset(std::max(radius * 0.4, tile.width * 0.04));
  const auto at = [inner](double x, double y) {
    return Point{inner.x + inner.width * x, inner.y + inner.height * y};
  };
  const double unit = std::min(tile.width, tile.height);
  const Point lake = at(0.58, 0.06);
  canvas.fill({lake.x, lake.y, inner.width * 0.34, inner.height * 0.26}, water, unit * 0.1);
  const double roadWidth = std::min(unit * 0.05, 12.0);
  canvas.clip(tile, radius);
  canvas.line(std::array{at(-0.1, 0.22), at(1.1, 0.45)}, roadWidth, road);
  canvas.line(std::array{at(0.37, -0.1), at(0.25, 1.1)}, roadWidth, road);
  canvas.release();
  std::array<Point, 49> way;
  const std::uint32_t number = numberOf(name);
  for (std::size_t i = 0; i < way.size(); ++i) {
    const double share = static_cast<double>(i) / (way.size() - 1);
    const double sway = std::sin(share * (5 + number % 3) + number % 7) * 0.14 +
                        std::sin(share * 11 + number % 5) * 0.05;
    way[i] = at(0.14 + 0.72 * share, 0.78 - 0.5 * share + sway);
  }
  const double width = std::min(unit * 0.045, 7.0);
  canvas.line(way, width, route);
  canvas.circle(way.front(), width * 1.1, 0xFFFFFF);
  canvas.circle(way.front(), width * 0.7, route);
  canvas.circle(way.back(), width * 1.4, route);
}

void drawTabSymbol(Canvas& canvas, Point centre, std::string_view tab, Colour colour) {
  const std::string name = asciiLowercase(tab);
  const auto* found = std::find_if(tabSymbols.begin(), tabSymbols.end(), [&name](const auto& each) {
    return hasOneOf(name, each.words);
  });
  canvas.sketch(centre, 1, found == tabSymbols.end() ? otherTabSymbol : found->shapes, colour);
}

}  // namespace corvane::standin
