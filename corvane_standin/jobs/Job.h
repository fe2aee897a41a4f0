#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Ids.h"
#include "corvane_standin/runs/TestCapture.h"
#include "corvane_standin/scenario/Script.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

/// What jobs of every kind work with. All of it outlives them.
struct Services {
  const Clock& clock;
  const StandInSettings& settings;
  WorkspaceStore& workspace;
  Script& script;
  const Ids& ids;
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
    /// The program is to do nothing any more, though it lives on.
    hung,
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
  /// Whether and how the final result is torn.
  [[nodiscard]] const std::optional<TornResult>& tornResult() const { return torn; }
  /// Has the final result torn, unless `how` is nothing.
  void tearResult(const std::optional<TornResult>& how) { torn = how; }
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
  /// Ends as blocked by what the outcome of a test or a request names.
  template <class Outcome>
  void endBlocked(const Outcome& outcome) {
    endBlocked(
        outcome.blockedCode.value_or("appNotInstalled"),
        outcome.blockedMessage.value_or("The app under test is not installed on the device."));
  }
  /// Ends as blocked or as an error, whichever the refusal is.
  void endRefused(const RequestRefused& refused);

  AgentRunResult state;
  bool cancelRequested = false;

 private:
  std::string_view name;
  std::optional<TornResult> torn;
};

/// The only writer of result files.
class ResultPublisher {
 public:
  ResultPublisher(const AgentPaths& paths, const Clock& clock, const StandInLog& log)
      : paths(paths), clock(clock), log(log) {}

  /// Dates `result` now and writes its file. A failure is logged and leaves the file as it was.
  void publish(AgentRunResult result) const;
  /// Publishes a later version of `result`, unless its file was taken away: that happens when a
  /// home is being deleted, and a file written then would be in the way.
  void publishAgain(AgentRunResult result) const;
  /// Does the same, but for the second half of the file.
  void publishTorn(AgentRunResult result) const;

  /// Ends, as an error, every request that an earlier life of the app left unfinished.
  void settleOrphans() const;

 private:
  const AgentPaths& paths;
  const Clock& clock;
  const StandInLog& log;
};

/// The only writer of the activity file.
class ActivityPublisher {
 public:
  ActivityPublisher(const AgentPaths& paths, const Clock& clock, const StandInLog& log,
                    Clock::Duration heartbeat)
      : paths(paths), clock(clock), log(log), heartbeat(heartbeat) {}

  /// Dates `activity` now and writes it if it differs from what was published last, or if that was
  /// a heartbeat ago. A file that was taken away is not brought back: its home is being deleted. A
  /// failure is logged.
  void publish(AgentActivity activity);

 private:
  struct Published {
    std::string undated;
    Clock::Time at;
    bool written = true;
  };

  const AgentPaths& paths;
  const Clock& clock;
  const StandInLog& log;
  Clock::Duration heartbeat;
  std::optional<Published> last;
};

/// The jobs in the app's hands: one active, the others behind it, first in first out. Publishes
/// every change of theirs and keeps unchanged results fresh.
class JobQueue {
 public:
  JobQueue(const ResultPublisher& results, const Clock& clock, const StandInLog& log,
           Clock::Duration heartbeat)
      : results(results), clock(clock), log(log), heartbeat(heartbeat) {}

  [[nodiscard]] bool contains(std::string_view id) const;
  void add(std::unique_ptr<Job> job);
  /// A waiting job ends at once, the active one between two steps; an unknown id changes nothing.
  void cancel(std::string_view id);
  /// What the activity file says about the jobs; the rest of it is left empty.
  [[nodiscard]] AgentActivity activity() const;
  /// Whether the active job is kept fresh; true when there is none.
  [[nodiscard]] bool heartbeats() const { return !active || active->job->heartbeats(); }
  /// Lets the active job move on, or the next one begin. Tells what became of it.
  [[nodiscard]] Job::Advance advance();
  /// Ends every job because the app quits.
  void quit();

 private:
  struct Entry {
    std::unique_ptr<Job> job;
    Clock::Time published;
    /// When its turn came.
    Date startedAt{};
  };

  /// A final result that is going to be whole.
  struct TornEntry {
    AgentRunResult result;
    Stopwatch age;
    double wholeAfterSeconds;
  };

  void publishAgain(Entry& entry);
  void publishTorn(const Entry& entry);
  void mendTornResults();
  void refresh(Entry& entry);

  const ResultPublisher& results;
  const Clock& clock;
  const StandInLog& log;
  Clock::Duration heartbeat;
  std::optional<Entry> active;
  std::deque<Entry> waiting;
  std::vector<TornEntry> torn;
};

}  // namespace corvane::standin
