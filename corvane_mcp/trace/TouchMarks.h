#pragma once

#include <compare>
#include <optional>
#include <span>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// A place in a picture, in its pixels; whole numbers are borders between pixels.
struct Point {
  double x = 0;
  double y = 0;

  friend auto operator<=>(const Point&, const Point&) = default;
};

/// Where a touch is to be marked: its point, which lies in the picture, and a drag's end, which may
/// lie anywhere.
struct TouchMark {
  Point start;
  std::optional<Point> end = std::nullopt;

  friend auto operator<=>(const TouchMark&, const TouchMark&) = default;
};

/// Draws `marks` on `picture`: corner brackets around every touched point, and for a drag a line to
/// its end with an arrowhead there. Sizes are in proportion to the picture; what reaches out of it
/// is cut at the border.
void drawTouchMarks(Picture& picture, std::span<const TouchMark> marks);

}  // namespace corvane
