#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "CorvaneCore/requests/Requests.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/runs/TestRun.h"

namespace corvane::standin {

/// Runs tests that exist in the workspace. What there is to run is looked up when the turn comes,
/// so that a run finds what the jobs before it brought in.
class RunJob final : public Job {
 public:
  /// `source` names the tool that asked for the run.
  RunJob(AgentRunRequest request, const Services& services, std::string_view source = "run_test");

  [[nodiscard]] bool heartbeats() const override;
  [[nodiscard]] Advance advance() override;
  void end(RunStatus status, std::string message) override;

 private:
  enum class Stage { waiting, building, running };

  [[nodiscard]] Advance begin();
  [[nodiscard]] Advance build();
  [[nodiscard]] Advance play();
  void startTests();
  void finishStep();
  void toNextStep();
  void closeTest(std::string_view status);
  void finish();
  void endCancelled();
  /// Whether the step in hand is the one at which a test of outcome `kind` takes its turn.
  [[nodiscard]] bool isTurning(TestOutcome::Kind kind) const;

  AgentRunRequest request;
  Services services;
  Stage stage = Stage::waiting;
  /// For the build or the step in hand.
  Stopwatch stopwatch;
  std::optional<RunPlan> plan;
  std::vector<AgentRunResult::Test> closed;
  std::optional<TestRun> current;
  /// Records the current test; null when that is not wanted.
  std::unique_ptr<TestCapture> capture;
  double creditsSpent = 0;
};

}  // namespace corvane::standin
