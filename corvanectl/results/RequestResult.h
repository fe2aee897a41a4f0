#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/ExitStatus.h"

namespace corvane::ctl {

/// How a request that has finished with this status ends the program.
[[nodiscard]] ExitStatus exitStatusOf(std::string_view status);

/// Whether a step passed, or tried to, only after healing.
[[nodiscard]] bool isHealed(const AgentRunResult::Step& step);

/// A test in a line, and the steps of it that failed or were healed in one or two lines each. Ends
/// with a line feed.
[[nodiscard]] std::string summarizeTest(const AgentRunResult::Test& test);

/// Whether a summary tells of the tests; it need not where they have been told of already.
enum class TestLines { shown, leftOut };

/// A finished request in a few lines for people, from its result file's text: how it ended and why,
/// its tests with the steps that failed or were healed, what it made, what it cost. Steps are
/// numbered from 0, as the server's traceStepIndex counts them. When the text does not have the
/// form of a result, the status and the text itself. Ends with a line feed.
[[nodiscard]] std::string summarizeResult(std::string_view json, std::string_view status,
                                          TestLines tests = TestLines::shown);

}  // namespace corvane::ctl
