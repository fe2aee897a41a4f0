#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_standin/capture/Screen.h"
#include "corvane_standin/capture/StepWords.h"
#include "corvane_standin/runs/TestRun.h"

namespace corvane::standin {

/// Makes up the screens that a test comes by: pages on which there is what its steps speak of, in
/// the state that the steps before have brought about.
class ScreenStory {
 public:
  /// `appName` is what the app is called, on `platform` as results have it.
  ScreenStory(const PlannedTest& test, const std::string& appName, const std::string& platform);

  /// What the phone shows before a step, or after the last one, with what the step is going to
  /// touch as its target.
  [[nodiscard]] const Screen& screenAt(std::size_t step) const { return screens.at(step); }
  [[nodiscard]] std::size_t stepCount() const { return steps.size(); }
  [[nodiscard]] const StepWords& words(std::size_t step) const { return steps[step]; }

 private:
  std::vector<StepWords> steps;
  /// One more than there are steps.
  std::vector<Screen> screens;
};

/// Where a step touches the screen, in fractions of it: `target`, which it speaks of, or for a
/// scroll the middle. Empty for a step that touches nothing, or whose target is not there.
[[nodiscard]] std::vector<Touch> touchesOf(const StepWords& step,
                                           const std::optional<Rect>& target);

}  // namespace corvane::standin
