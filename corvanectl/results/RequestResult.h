#pragma once

#include <string>
#include <string_view>

#include "corvanectl/ExitStatus.h"

namespace corvane::ctl {

/// How a request that has finished with this status ends the program.
[[nodiscard]] ExitStatus exitStatusOf(std::string_view status);

/// A finished request in a few lines for people, from its result file's text: how it ended and why,
/// its tests with the steps that failed or were healed, what it made, what it cost. Steps are
/// numbered from 0, as the server's traceStepIndex counts them. When the text does not have the
/// form of a result, the status and the text itself. Ends with a line feed.
[[nodiscard]] std::string summarizeResult(std::string_view json, std::string_view status);

}  // namespace corvane::ctl
