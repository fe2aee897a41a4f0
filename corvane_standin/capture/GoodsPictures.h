#pragma once

#include <string_view>

#include "corvane_standin/capture/Canvas.h"

namespace corvane::standin {

/// A picture of the product called `name`, on a tile of its own colour.
void drawGoods(Canvas& canvas, Rect tile, double radius, std::string_view name);

/// A map with a route on it; every name has its own.
void drawRoute(Canvas& canvas, Rect tile, double radius, std::string_view name, Colour route);

}  // namespace corvane::standin
