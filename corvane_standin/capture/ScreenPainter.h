#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvane_standin/capture/Lettering.h"
#include "corvane_standin/capture/PhoneFrame.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// A screen as a picture file, and where its target is, in fractions of the picture.
struct PaintedScreen {
  std::string png;
  std::optional<Rect> target;
};

/// Paints screens of phones, three pixels to a point. Used by one thread at a time.
class ScreenPainter {
 public:
  /// Throws std::runtime_error when the picture cannot be encoded.
  [[nodiscard]] PaintedScreen paint(const Screen& screen);

 private:
  static constexpr int scale = 3;

  Lettering letters{scale};
};

}  // namespace corvane::standin
