#pragma once

#include <string>

#include "corvane_standin/capture/Canvas.h"

namespace corvane::standin {

/// The canvas as the bytes of a PNG, pressed for speed. Throws std::runtime_error.
[[nodiscard]] std::string encodePng(const Canvas& canvas);

}  // namespace corvane::standin
