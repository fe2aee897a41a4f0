#pragma once

#include <functional>
#include <map>
#include <string>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/program/StandInLog.h"

namespace corvane::standin {

/// The workspace, which lives in the published context file from one start to the next.
class WorkspaceStore {
 public:
  /// Takes up the workspace in the context file, or the first one when there is no usable file.
  WorkspaceStore(const AgentPaths& paths, const Clock& clock, const StandInLog& log);

  [[nodiscard]] const AgentContext& workspace() const { return context; }

  /// Changes the workspace and publishes it again. What `change` throws leaves it as it was.
  void update(const std::function<void(AgentContext&)>& change);

  /// Notes how a test that ran to its end turned out, and publishes again.
  void record(const std::string& projectName, const AgentRunResult::Test& outcome);

  /// Dates the workspace now and writes the context file. A failure is logged.
  void publish();

 private:
  void load();
  void publishAgain();

  const AgentPaths& paths;
  const Clock& clock;
  const StandInLog& log;
  AgentContext context;
  /// By test id, for tests that ran in this life: whether the last run failed.
  std::map<std::string, bool> lastRunFailed;
};

}  // namespace corvane::standin
