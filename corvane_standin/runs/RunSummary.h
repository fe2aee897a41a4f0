#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/runs/RunPlan.h"

namespace corvane::standin {

/// The status of a run whose tests all ran: failed, warning or passed.
[[nodiscard]] RunStatus overallStatus(const std::vector<AgentRunResult::Test>& tests);

/// What there is to say about such a run: how many tests passed and which of them deserve a look.
/// `tests` are the outcomes of the tests of `plan`, in its order.
[[nodiscard]] std::string overallMessage(const RunPlan& plan,
                                         const std::vector<AgentRunResult::Test>& tests);

[[nodiscard]] AgentRunResult::Summary summaryOf(const std::vector<AgentRunResult::Test>& tests);

}  // namespace corvane::standin
