#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/jobs/DropFolder.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/jobs/ScriptedJob.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Ids.h"
#include "corvane_standin/runs/TestCapture.h"
#include "corvane_standin/scenario/Script.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

/// Corvane.app as far as its shared files show it. Does nothing by itself: whoever owns it calls
/// tick() again and again, and each call does what is due by then.
class StandIn {
 public:
  /// A home without a workspace begins with `firstWorkspace`. `clock` and `log` outlive the
  /// stand-in.
  StandIn(AgentPaths paths, StandInSettings settings, const Clock& clock, const StandInLog& log,
          AgentContext firstWorkspace = standin::firstWorkspace());
  StandIn(const StandIn&) = delete;
  StandIn& operator=(const StandIn&) = delete;

  /// Takes at most one step of the active job and takes in what was dropped. False when the program
  /// is to end on the spot, as one that crashes.
  [[nodiscard]] bool tick();

  /// Ends what is in hand, unless the program hangs; no tick follows.
  void quit();

 private:
  void open();
  void takeIn();
  /// One for every kind of request.
  void takeUp(const std::string& id, AgentRunRequest request);
  void takeUp(const std::string& id, AgentExploreRequest request);
  void takeUp(const std::string& id, AgentLibraryRequest request);
  void takeUp(const std::string& id, AgentTestSchema payload);
  void takeUp(const std::string& id, const UnusableRequest& request);
  /// Queues the job that `makeJob` makes, unless the request is to turn out otherwise.
  template <class MakeJob>
  void add(const RequestOutcome& outcome, const ScriptedJob::Request& request, MakeJob makeJob);
  [[nodiscard]] Services services();
  void publishActivity();

  AgentPaths paths;
  StandInSettings settings;
  const Clock& clock;
  const StandInLog& log;
  AgentContext first;
  Script script;
  Ids ids;
  Clock::Time opensAt;
  double creditBalance;
  Captures captures;
  ResultPublisher results;
  DropFolder dropFolder;
  JobQueue queue;
  ActivityPublisher activity;
  /// Whether the program has stopped doing anything.
  bool hangs = false;
  /// Present once the cold start is over.
  std::optional<WorkspaceStore> workspace;
};

}  // namespace corvane::standin
