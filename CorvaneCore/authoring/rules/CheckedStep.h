#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/authoring/AgentInteraction.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/authoring/vocabulary/AgentTargetPlatform.h"

namespace corvane {

/// One step while it is checked.
struct CheckedStep {
  using Code = ValidationIssue::Code;

  const AgentInteraction& interaction;
  /// Where the step stands, e.g. "tests[0].interactions[2]".
  std::string path;
  /// The platform that its payload is for.
  AgentTargetPlatform platform;
  ValidationResult& result;

  /// Reports a problem at `place`, which continues the step's path, e.g. ".description".
  void error(Code code, std::string_view place, std::string message,
             std::optional<AnyCodable> suggestion = std::nullopt) const {
    result.addError(code, std::string(path).append(place), std::move(message),
                    std::move(suggestion));
  }
  void warning(Code code, std::string_view place, std::string message) const {
    result.addWarning(code, std::string(path).append(place), std::move(message));
  }
};

}  // namespace corvane
