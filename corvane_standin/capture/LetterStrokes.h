#pragma once

#include <vector>

#include "corvane_standin/capture/Geometry.h"

namespace corvane::standin {

/// Points that lines lead along, one after the other.
using Stroke = std::vector<Point>;

/// The strokes of a character in the grid of its glyph, beginning at 0 on the left.
[[nodiscard]] std::vector<Stroke> strokesOf(char32_t character);

/// The smallest area that holds all strokes.
[[nodiscard]] Rect extentOf(const std::vector<Stroke>& strokes);

}  // namespace corvane::standin
