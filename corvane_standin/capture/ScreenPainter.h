#pragma once

#include <optional>
#include <string>

#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// A screen as a picture file, and where its target is, in fractions of the picture.
struct PaintedScreen {
  std::string png;
  std::optional<Rect> target;
};

/// The same picture for the same screen. Throws std::runtime_error when it cannot be drawn.
[[nodiscard]] PaintedScreen paint(const Screen& screen);

}  // namespace corvane::standin
