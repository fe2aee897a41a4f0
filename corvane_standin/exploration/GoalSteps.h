#pragma once

#include <vector>

#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/exploration/GoalMap.h"

namespace corvane::standin {

/// The steps that an exploration finds on its way to a goal: one per clause, its type told from the
/// clause's first word, and at the end always a look at the state that the goal asks for.
[[nodiscard]] std::vector<AgentContext::StepSummary> stepsToward(const Goal& goal);

}  // namespace corvane::standin
