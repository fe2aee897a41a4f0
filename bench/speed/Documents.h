#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane::testing {

/// The large documents that rows are measured on, always the same.
namespace Documents {

/// Writes a context of 53 projects of 500 tests of 20 steps, some 20 MB.
void writeContext(const AgentPaths& in);
/// The name of a project in the midst of it.
inline constexpr std::string_view projectName = "Project 27";

/// Writes a terminal result of 4,000 tests of 40 steps, some 20 MB.
void writeTerminalResult(std::string_view requestId, const AgentPaths& in);
/// Writes the result of a run that goes on.
void writeRunningResult(std::string_view requestId, const AgentPaths& in);

/// create_test arguments with 2,000 interactions of every kind, as JSON.
[[nodiscard]] std::string createTestArguments();

}  // namespace Documents

}  // namespace corvane::testing
