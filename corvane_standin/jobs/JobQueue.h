#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/program/Environment.h"

namespace corvane::standin {

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
  /// Lets the active job move on, or the next one begin. False when the program is to end on the
  /// spot.
  [[nodiscard]] bool advance();
  /// Ends every job because the app quits.
  void quit();

 private:
  struct Entry {
    std::unique_ptr<Job> job;
    Clock::Time published;
    /// When its turn came.
    Date startedAt{};
  };

  void publishAgain(Entry& entry);
  void refresh(Entry& entry);

  const ResultPublisher& results;
  const Clock& clock;
  const StandInLog& log;
  Clock::Duration heartbeat;
  std::optional<Entry> active;
  std::deque<Entry> waiting;
};

}  // namespace corvane::standin
