#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "CorvaneCore/requests/AgentRunRequest.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/TestOutcome.h"

namespace corvane::standin {

struct PlannedStep {
  std::string title;
  std::string description;
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

/// A request that cannot be run as it stands; the description is for the agent.
class RunRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  /// `code` tells the agent which action is needed.
  RunRefused(const std::string& description, std::string code)
      : std::runtime_error(description), code(std::move(code)) {}

  /// Present when the request is blocked, absent when it is in error.
  std::optional<std::string> code;
};

/// What `request` runs in `workspace`, by test name turning out as `outcomes` say. Throws
/// RunRefused.
[[nodiscard]] RunPlan planRun(const AgentRunRequest& request, const AgentContext& workspace,
                              const std::map<std::string, TestOutcome>& outcomes);

}  // namespace corvane::standin
