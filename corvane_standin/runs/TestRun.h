#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/scenario/Script.h"

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

/// The tests that `request` names in `workspace`, in their order. Throws RequestRefused.
[[nodiscard]] std::vector<const AgentContext::TestContext*> testsOf(const AgentRunRequest& request,
                                                                    const AgentContext& workspace);

/// What `request` runs in `workspace`, each test turning out as `script` has it. Throws
/// RequestRefused.
[[nodiscard]] RunPlan planRun(const AgentRunRequest& request, const AgentContext& workspace,
                              Script& script);

/// One test as far as it has run.
class TestRun {
 public:
  /// `plan` outlives the run.
  explicit TestRun(const PlannedTest& plan);

  /// The number of steps done, which is the index of the one in hand.
  [[nodiscard]] std::size_t stepsDone() const { return outcome.steps.size(); }
  [[nodiscard]] bool isOver() const { return stepsDone() == plan->steps.size(); }
  /// Whether the step in hand is the one at which the test's outcome shows.
  [[nodiscard]] bool isAtTurn() const { return !isOver() && stepsDone() == plan->turningStep; }

  /// Finishes the step in hand, after `duration`, the way the test's outcome has it. A failed step
  /// ends the test.
  void finishStep(Clock::Duration duration);
  /// Leaves out the steps not done and gives the test its status.
  void close(std::string_view status);

  /// The status that goes with the steps done: "failed", "warning" or "passed".
  [[nodiscard]] std::string_view status() const;
  [[nodiscard]] const PlannedTest& planned() const { return *plan; }
  [[nodiscard]] const AgentRunResult::Test& result() const { return outcome; }

 private:
  AgentRunResult::Step& addStep(std::string_view status);
  void skipRest();

  const PlannedTest* plan;
  AgentRunResult::Test outcome;
};

/// The status of a run whose tests all ran: failed, warning or passed.
[[nodiscard]] RunStatus overallStatus(const std::vector<AgentRunResult::Test>& tests);

/// What there is to say about such a run: how many tests passed and which of them deserve a look.
/// `tests` are the outcomes of the tests of `plan`, in its order.
[[nodiscard]] std::string overallMessage(const RunPlan& plan,
                                         const std::vector<AgentRunResult::Test>& tests);

[[nodiscard]] AgentRunResult::Summary summaryOf(const std::vector<AgentRunResult::Test>& tests);

}  // namespace corvane::standin
