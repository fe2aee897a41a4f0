#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "corvane_standin/capture/Canvas.h"
#include "corvane_standin/capture/Screen.h"

namespace corvane::standin {

/// What stands out in an app: every app has a colour of its own, always the same one.
[[nodiscard]] Colour accentOf(std::string_view appName);

/// A screen as a picture file, and where its target is, in fractions of the picture.
struct PaintedScreen {
  std::string png;
  std::optional<Rect> target;
};

/// The same picture for the same screen. Throws std::runtime_error when it cannot be drawn.
[[nodiscard]] PaintedScreen paint(const Screen& screen);

}  // namespace corvane::standin
