#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvane_standin/capture/Screen.h"
#include "corvane_standin/capture/StoryPages.h"

namespace corvane::standin {

/// Changes a screen the way a step does that leaves its page in sight: types, scrolls, flips,
/// swipes a row aside so that `underRow`, a button, comes out.
void applyStep(Screen& screen, const StepWords& step, const std::optional<Target>& target,
               const std::string& underRow);

/// The button that a swipe uncovers on this page; empty when nothing is swiped.
[[nodiscard]] std::string buttonUnderRow(const std::vector<StepWords>& steps,
                                         const PageSteps& page);

}  // namespace corvane::standin
