#pragma once

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"

namespace corvane::TestValidator {

/// Checks a payload against every authoring rule and reports all problems at once. A pure function
/// that never refuses a payload: whatever is wrong becomes an issue. May be called from any thread.
[[nodiscard]] ValidationResult validate(const AgentTestSchema& payload);

}  // namespace corvane::TestValidator
