#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"

namespace corvane {

/// A finished request in a few lines for people: how it ended and why, its tests with the steps
/// that failed or were healed, what it made, what it cost. Steps are numbered from 0, as the
/// server's traceStepIndex counts them. Ends with a line feed.
[[nodiscard]] std::string summarize(const AgentRunResult& result);

/// The same from a result file's text. When that does not have the form of a result, the status and
/// the text itself.
[[nodiscard]] std::string summarizeResult(const std::string& json, std::string_view status);

}  // namespace corvane
