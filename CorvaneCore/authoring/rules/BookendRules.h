#pragma once

#include <string>

#include "CorvaneCore/authoring/AgentTest.h"
#include "CorvaneCore/authoring/ValidationResult.h"

namespace corvane {

/// Whether a test with at least one step begins by terminating and opening the app and ends by
/// terminating it. `path` is the place of its interactions.
void checkBookends(const AgentTest& test, const std::string& path, ValidationResult& result);

}  // namespace corvane
