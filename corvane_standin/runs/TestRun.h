#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/runs/RunPlan.h"

namespace corvane::standin {

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

/// `duration` in seconds to the millisecond, as results carry it.
[[nodiscard]] double roundedSeconds(Clock::Duration duration);

}  // namespace corvane::standin
