#pragma once

#include "corvane_standin/capture/Canvas.h"

namespace corvane::standin {

/// The colours that all apps share.
namespace palette {

inline constexpr Colour white = 0xFFFFFF;
inline constexpr Colour black = 0x000000;
inline constexpr Colour ground = 0xF5F4F0;
inline constexpr Colour bar = 0xFBFAF8;
inline constexpr Colour ink = 0x1C1D1F;
inline constexpr Colour quiet = 0x6E6F75;
inline constexpr Colour hairline = 0xE0DED8;
inline constexpr Colour disabled = 0xC9C8C4;
inline constexpr Colour danger = 0xC8352B;

}  // namespace palette

/// What the parts of a screen are painted with. All of it outlives the painting.
struct Brush {
  Canvas& canvas;
  /// What stands out in this app, and a pale version of it.
  Colour accent;
  Colour tint;
};

/// How high an element is on a page `width` wide.
[[nodiscard]] double heightOf(const Element& element, double width, const Canvas& canvas);

/// Whether an element stays at the foot of a page: buttons and bills do.
[[nodiscard]] bool isAtFoot(const Element& element);

/// Paints an element into `area` and says where a finger would touch it.
Rect paintElement(const Element& element, Rect area, const Brush& brush);

/// A picture of the product called `name`, on a tile of its own colour.
void drawGoods(Canvas& canvas, Rect tile, double radius, std::string_view name);

/// A map with a route on it; every name has its own.
void drawRoute(Canvas& canvas, Rect tile, double radius, std::string_view name, Colour route);

/// The sign that fits a tab of this name, about 22 points high.
void drawTabSymbol(Canvas& canvas, Point centre, std::string_view tab, Colour colour);

/// Signs to be sketched, in points but for the tick, which is one unit wide.
namespace symbols {

inline constexpr std::string_view magnifier = "O -2 -2 7 2 L 2 3.2 3.2 9 9";
inline constexpr std::string_view tick = "L .14 -.5 .05 -.12 .42 .5 -.38";
inline constexpr std::string_view leftChevron = "L 2 7 -7 0 0 7 7";
inline constexpr std::string_view rightChevron = "L 2 -7 -7 0 0 -7 7";
inline constexpr std::string_view shiftKey = "L 2 -8 3 0 -6 8 3";

}  // namespace symbols

}  // namespace corvane::standin
