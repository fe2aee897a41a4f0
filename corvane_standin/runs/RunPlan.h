#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/runs/TestOutcome.h"

namespace corvane::standin {

struct PlannedStep {
  std::string title;
  std::string description;
  /// The interaction type as the workspace has it.
  std::string type = {};
};

struct PlannedTest {
  std::string id;
  std::string name;
  std::vector<PlannedStep> steps;
  TestOutcome outcome;
  /// The step at which the outcome shows; a step of the test, unless the test has none.
  std::size_t turningStep = 0;
};

/// Everything that a run is going to do.
struct RunPlan {
  std::string platform;
  AgentRunResult::AppIdentity app;
  bool builds = false;
  std::vector<PlannedTest> tests;

  [[nodiscard]] std::size_t stepCount() const;
  /// Why the build is going to fail, if it is.
  [[nodiscard]] std::optional<std::string> buildFailure() const;
};

/// What `request` runs in `workspace`, by test name turning out as `outcomes` say. Throws
/// RequestRefused.
[[nodiscard]] RunPlan planRun(const AgentRunRequest& request, const AgentContext& workspace,
                              const std::map<std::string, TestOutcome>& outcomes);

}  // namespace corvane::standin
