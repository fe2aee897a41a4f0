#pragma once

#include <span>
#include <string>
#include <string_view>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/capture/Canvas.h"
#include "corvane_standin/steps/Steps.h"

/// What is drawn on screens beside texts and boxes, as sketches for a Canvas.
namespace corvane::standin::pictures {

/// What is drawn for a name that has one of the words, which are separated by spaces, in it; the
/// last picture of a table stands for every other name.
struct Picture {
  std::string_view words;
  Colour ground;
  std::string_view shapes;
};

inline const Picture& of(std::span<const Picture> table, std::string_view name) {
  const std::string lower = asciiLowercase(name);
  for (const auto& picture : table) {
    for (const auto word : split(picture.words)) {
      if (lower.find(word) != lower.npos) return picture;
    }
  }
  return table.back();
}

/// Signs in points, but for the tick, which is one unit wide.
inline constexpr std::string_view magnifier = "O -2 -2 7 2 L 2 3.2 3.2 9 9";
inline constexpr std::string_view status =
    "R 0 -5 3.6 5 1 R 5.5 -7.5 3.6 7.5 1 R 11 -10 3.6 10 1 R 16.5 -12.5 3.6 12.5 1"
    "L 1 31 -12.5 53 -12.5 53 .5 31 .5 31 -12.5 R 33 -10.5 15 9 1 R 55 -8 2 5 1";
inline constexpr std::string_view tick = "L .14 -.5 .05 -.12 .42 .5 -.38";
inline constexpr std::string_view leftChevron = "L 2 7 -7 0 0 7 7";
inline constexpr std::string_view rightChevron = "L 2 -7 -7 0 0 -7 7";

/// As large as a screen.
inline constexpr std::string_view wallpaper =
    "#4A6A94 R 0 0 390 844 0 #F2B38A C 290 470 78 #D98E7F P 0 560 120 450 250 580 390 500 390 844 "
    "0 "
    "844 #8A5A78 P 0 690 150 570 300 680 390 630 390 844 0 844 #2B3A5B P 0 780 190 700 390 790 390 "
    "844 0 844";
/// What lies under the routes on maps.
inline constexpr Colour mapGround = 0xDCE8D2;
inline constexpr std::string_view land =
    "#B5D3E0 R .58 .1 .3 .24 .09 #F7F6F1 L .045 .03 .26 .97 .46 L .045 .37 .03 .27 .9";

/// In a square whose sides are 1 long.
inline constexpr Picture items[]{
    {"lake", mapGround,
     "L .025 .15 .76 .19 .69 .23 .64 .28 .57 .31 .49 .36 .44 .42 .42 .48 .45 .52 .5 .56 .52 .62 "
     ".51 .67 .47 .71 .42 .74 .38 .8 .35"},
    {"ridge", mapGround,
     "L .025 .18 .8 .22 .74 .27 .71 .3 .65 .32 .58 .37 .54 .43 .54 .48 .5 .51 .43 .54 .38 .6 .35 "
     ".65 .33 .69 .27 .76 .24"},
    {"walk record town", mapGround,
     "L .025 .15 .72 .18 .64 .23 .57 .29 .52 .36 .51 .43 .53 .49 .57 .55 .59 .61 .57 .65 .52 .68 "
     ".45 .72 .39 .78 .36 .83 .34"},
    {"mug", 0xBFD3E6,
     "#F7F5EE O .68 .52 .11 .05 R .28 .3 .4 .46 .07 #2F4A7A R .26 .27 .44 .06 .03 #E4E0D4 R .36 "
     ".44 .05 .2 .025"},
    {"apron", 0xEBDCC8,
     "#5E4630 O .5 .26 .11 .025 L .025 .34 .52 .18 .58 L .025 .66 .52 .82 .58 #8C6A4A P .39 .3 "
     ".61 .3 .7 .5 .73 .84 .27 .84 .3 .5 #795A3D R .38 .56 .24 .15 .03"},
    {"linen", 0xC9D6CF,
     "#D9CDB8 R .2 .6 .6 .14 .06 #B2A897 R .28 .6 .03 .14 0 #B9C4B4 R .2 .45 .6 .14 .06 #98A194 "
     "R .28 .45 .03 .14 0 #F0E9DC R .2 .3 .6 .14 .06 #C5BFB4 R .28 .3 .03 .14 0"},
    {"bowl", 0xEAD7CF,
     "#3B525C R .4 .7 .2 .07 .02 #4F6D7A P .2 .45 .8 .45 .77 .58 .7 .67 .6 .73 .4 .73 .3 .67 .23 "
     ".58 #8499A2 R .17 .42 .66 .06 .03"},
    {"candle", 0xDCE3D0,
     "#E9BE5A R .37 .38 .26 .42 .03 #F3D184 R .37 .38 .09 .42 .03 #4A3A24 L .02 .5 .38 .5 .32 "
     "#E8742C C .5 .27 .05 P .455 .25 .5 .14 .545 .25"},
    {"lamp", 0xCDD3E3,
     "#3B3B40 L .03 .5 .78 .5 .46 R .34 .77 .32 .05 .025 #F2C14E P .39 .2 .61 .2 .74 .5 .26 .5 "
     "#F7D583 P .39 .2 .47 .2 .41 .5 .26 .5"},
    {"plant", 0xE6E0EE,
     "#4E8A4A P .5 .6 .3 .46 .26 .24 .46 .4 #42753F P .5 .6 .7 .46 .74 .24 .54 .4 #71A16E P .5 "
     ".6 .42 .36 .5 .16 .58 .36 #C06B45 P .31 .58 .69 .58 .63 .84 .37 .84 #CF7E58 R .28 .55 .44 "
     ".08 .02"},
    {"bottle", 0xF0D9D6,
     "#5FA39A R .44 .16 .12 .24 .03 R .35 .34 .3 .48 .09 #B98A56 R .42 .14 .16 .06 .02 #F4F0E4 R "
     ".35 .52 .3 .16 0"},
    {"basket", 0xF1E4C6,
     "#845D33 O .5 .44 .22 .035 #B07C44 P .2 .44 .8 .44 .72 .8 .28 .8 #7B5730 L .018 .25 .53 .75 "
     ".53 L .018 .25 .62 .75 .62 L .018 .25 .71 .75 .71 #C49D73 R .18 .42 .64 .06 .03"},
};

/// About 22 points high.
inline constexpr Picture tabs[]{
    {"cart basket bag", 0,
     "L 2 -9 -4 9 -4 8 10 -8 10 -9 -4 L 2 -5 -4 -4.4 -7 -2.4 -9 2.4 -9 4.4 -7 5 -4"},
    {"shop home", 0, "L 2 -11 0 0 -10 11 0 L 2 -8 -2 -8 10 8 10 8 -2"},
    {"account profile", 0, "O 0 -5 5 2 L 2 -9 10 -8 5 -4 2.4 4 2.4 8 5 9 10"},
    {"settings", 0,
     "L 2 -10 -7 10 -7 C -4 -7 3.2 L 2 -10 0 10 0 C 5 0 3.2 L 2 -10 7 10 7 C -1 7 3.2"},
    {"map", 0, "O 0 -3 7.5 2 L 2 -5 2.6 0 10 5 2.6 C 0 -3 2.4"},
    {"", 0, "C -9 -7 1.6 L 2 -4 -7 10 -7 C -9 0 1.6 L 2 -4 0 10 0 C -9 7 1.6 L 2 -4 7 10 7"},
};

}  // namespace corvane::standin::pictures
