#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_standin/capture/Screen.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

/// Something on the screen that a step speaks of.
struct NamedPart {
  /// Nothing when the step does not say what it is.
  std::optional<Element::Kind> kind;
  std::string label;

  friend bool operator==(const NamedPart&, const NamedPart&) = default;
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

}  // namespace corvane::standin
