#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/json/Codec.h"

namespace corvane {

/// One step while it is checked.
struct CheckedStep {
  using Code = ValidationIssue::Code;

  const AgentInteraction& interaction;
  /// Where the step stands, e.g. "tests[0].interactions[2]"; a text only for those who ask.
  const DecodePath& path;
  /// The platform that its payload is for.
  AgentTargetPlatform platform;
  ValidationResult& result;

  /// Reports a problem at `place`, which continues the step's path, e.g. ".description".
  void error(Code code, std::string_view place, std::string message,
             std::optional<AnyCodable> suggestion = std::nullopt) const {
    result.addError(code, path.text().append(place), std::move(message), std::move(suggestion));
  }
  void warning(Code code, std::string_view place, std::string message) const {
    result.addWarning(code, path.text().append(place), std::move(message));
  }
};

/// The number under `key`, whole or not; nothing for a value of another kind.
[[nodiscard]] inline std::optional<double> numberAt(const JsonObject& object,
                                                    std::string_view key) {
  if (const auto* number = object.findAs<double>(key)) return *number;
  if (const auto* integer = object.findAs<std::int64_t>(key)) return static_cast<double>(*integer);
  return std::nullopt;
}

}  // namespace corvane

namespace corvane::TestValidator {

/// Checks a payload against every authoring rule and reports all problems at once. A pure function
/// that never refuses a payload: whatever is wrong becomes an issue. May be called from any thread.
[[nodiscard]] ValidationResult validate(const AgentTestSchema& payload);

}  // namespace corvane::TestValidator
