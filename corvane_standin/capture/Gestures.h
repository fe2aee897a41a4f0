#pragma once

#include <optional>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_standin/capture/Geometry.h"
#include "corvane_standin/capture/StepWords.h"

namespace corvane::standin {

/// Where a step touches the screen, in fractions of it: `target`, which it speaks of, or for a
/// scroll the middle. Empty for a step that touches nothing, or whose target is not there.
[[nodiscard]] std::vector<Touch> touchesOf(const StepWords& step,
                                           const std::optional<Rect>& target);

}  // namespace corvane::standin
