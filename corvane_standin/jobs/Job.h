#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/capture/Captures.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

/// What jobs of every kind work with. All of it outlives them.
struct Services {
  const Clock& clock;
  const StandInSettings& settings;
  WorkspaceStore& workspace;
  /// The credits left, which jobs draw on.
  double& creditBalance;
  Captures& captures;
};

/// One request in the app's hands, from received to a terminal status. Each kind of request has its
/// own; the queue drives them all and publishes what they say.
class Job {
 public:
  enum class Advance {
    waited,
    changed,
    /// The program is to end on the spot, with nothing more written.
    crashed,
  };

  virtual ~Job() = default;

  [[nodiscard]] const std::string& id() const { return state.requestId; }
  /// What the activity file calls this sort of request.
  [[nodiscard]] std::string_view kind() const { return name; }
  /// What the result file is to say.
  [[nodiscard]] const AgentRunResult& result() const { return state; }
  /// Whether the result is kept fresh while nothing else changes it.
  [[nodiscard]] virtual bool heartbeats() const { return true; }
  /// Whether tests are being authored on the device just now.
  [[nodiscard]] virtual bool isAuthoring() const { return false; }

  /// Sets the place behind the active job; false when that is where it was.
  bool queueAt(std::int64_t position);
  /// Moves on if its time has come. Called only while it is this job's turn.
  [[nodiscard]] virtual Advance advance() = 0;
  /// Asks a job whose turn it is to end as soon as it is between two steps.
  void cancel() { cancelRequested = true; }
  /// Ends the job where it is.
  virtual void end(RunStatus status, std::string message);

 protected:
  /// `source` names the tool that sent the request; `kind` outlives the job.
  Job(std::string_view requestId, std::string_view source, std::string_view kind);

  /// Takes on a status, leaving behind what belonged to the last one.
  void enter(RunStatus status);
  void endBlocked(std::string code, std::string message);
  /// Ends as blocked or as an error, whichever the refusal is.
  void endRefused(const RequestRefused& refused);

  AgentRunResult state;
  bool cancelRequested = false;

 private:
  std::string_view name;
};

}  // namespace corvane::standin
