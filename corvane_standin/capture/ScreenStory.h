#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/capture/CaptureSession.h"
#include "corvane_standin/capture/Screen.h"
#include "corvane_standin/runs/TestRun.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

/// Something on the screen that a step speaks of.
struct NamedPart {
  /// Nothing when the step does not say what it is.
  std::optional<Element::Kind> kind;
  std::string label;
};

/// What a step's description, written for people, says about the screen.
struct StepWords {
  /// A step of a type that this build does not know is one that looks.
  StepWords(std::string_view interactionType, std::string_view description);

  /// Whether one of `words`, which are separated by spaces, is a word of the description; capitals
  /// do not matter.
  [[nodiscard]] bool speakOf(std::string_view words) const;

  ScreenAct act = ScreenAct::look;
  std::string description;
  /// What it names in quotes; for a tap without quotes what is left without the verb.
  std::vector<NamedPart> parts;
};

/// The screens that a test comes by: pages on which there is what its steps speak of, in the state
/// that the steps before have brought about.
struct ScreenStory {
  /// `appName` is what the app is called, on `platform` as results have it.
  ScreenStory(const PlannedTest& test, const std::string& appName, const std::string& platform);

  std::vector<StepWords> steps;
  /// What the phone shows before each step and after the last one, with what the step is going to
  /// touch as its target.
  std::vector<Screen> screens;
};

/// Where a step touches the screen, in fractions of it: `target`, which it speaks of, or for a
/// scroll the middle. Empty for a step that touches nothing, or whose target is not there.
[[nodiscard]] std::vector<Touch> touchesOf(const StepWords& step,
                                           const std::optional<Rect>& target);

}  // namespace corvane::standin
