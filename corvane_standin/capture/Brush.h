#pragma once

#include <string_view>

#include "corvane_standin/capture/Canvas.h"
#include "corvane_standin/capture/Lettering.h"
#include "corvane_standin/capture/Look.h"

namespace corvane::standin {

/// What the painters of a screen's parts paint with. All of it outlives the painting.
struct Brush {
  Canvas& canvas;
  Lettering& letters;
  const Look& look;

  /// A line of text that begins at `x`, in the middle of `y`, cut when it is longer than `space`.
  void line(double x, double y, double space, std::string_view text, Font font,
            Colour colour) const {
    letters.draw(canvas, {x, baselineAround(y, font)}, letters.cut(text, font, space), font,
                 colour);
  }
  void centred(Point at, std::string_view text, Font font, Colour colour) const {
    letters.drawCentred(canvas, {at.x, baselineAround(at.y, font)}, text, font, colour);
  }
  void endingAt(Point at, std::string_view text, Font font, Colour colour) const {
    letters.drawEndingAt(canvas, {at.x, baselineAround(at.y, font)}, text, font, colour);
  }
};

}  // namespace corvane::standin
