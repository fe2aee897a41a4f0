#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvanectl/follow/FollowEvents.h"

namespace corvane::ctl {

/// Names tests of a project: by their names, by their suite or, when both are empty, all.
struct RunTarget {
  std::vector<std::string> tests;
  std::optional<std::string> suite;
};

/// The plan of a run; nothing when the project has not all that the target names.
[[nodiscard]] std::optional<RunPlan> planOf(const AgentContext::ProjectContext& project,
                                            const RunTarget& target);

/// The project that an answer of describe_project shows in full; nothing when it shows none that
/// can be read.
[[nodiscard]] std::optional<AgentContext::ProjectContext> describedProject(std::string_view answer);

/// Where a running result stands. The live count runs from 1, over the steps of the whole run or of
/// one test, and names the title of the step before; what comes of it counts like results do.
/// Which test it is and what its step does is told only where `plan` (which may be null) leaves no
/// doubt. `finished` is how many tests are known to be over.
[[nodiscard]] events::StepStarted placeOf(const AgentRunResult::Progress& progress,
                                          std::size_t finished, const RunPlan* plan);

/// What is left of a run whose test `current` has been running for `seconds`; nothing when one of
/// the tests left has not been run before.
[[nodiscard]] std::optional<double> secondsLeft(const RunPlan& plan, std::size_t current,
                                                double seconds, const TestDurations& earlier);

}  // namespace corvane::ctl
