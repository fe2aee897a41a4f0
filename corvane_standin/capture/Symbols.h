#pragma once

#include <string_view>

#include "corvane_standin/capture/Brush.h"

namespace corvane::standin {

/// Small signs around `centre`, drawn with lines. All are about 22 points high.
void drawMagnifier(Canvas& canvas, Point centre, Colour colour);
void drawTick(Canvas& canvas, Point centre, double size, double width, Colour colour);
/// A chevron that points left or right.
void drawChevron(Canvas& canvas, Point tip, bool left, Colour colour);
/// The sign that fits a tab of this name.
void drawTabSymbol(Canvas& canvas, Point centre, std::string_view tab, Colour colour);

}  // namespace corvane::standin
