#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/runs/RunJob.h"

namespace corvane::standin {

/// Checks the tests of a payload, files them and, unless told not to, runs them.
class ImportJob final : public Job {
 public:
  ImportJob(std::string requestId, AgentTestSchema payload, const Services& services);

  [[nodiscard]] bool heartbeats() const override { return !run || run->heartbeats(); }
  [[nodiscard]] Advance advance() override;
  void end(RunStatus status, std::string message) override;

 private:
  void beginChecking();
  void fileOrReject();
  void startRun(std::vector<std::string> testNames);
  [[nodiscard]] Advance advanceRun();
  void takeOverRunState();

  AgentTestSchema payload;
  Services services;
  /// Present while the payload is being checked.
  std::optional<Stopwatch> checking;
  /// Present once the tests run.
  std::optional<RunJob> run;
};

}  // namespace corvane::standin
