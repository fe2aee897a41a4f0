#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string_view>

#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_standin/jobs/Job.h"
#include "corvane_standin/jobs/ResultPublisher.h"
#include "corvane_standin/program/Clock.h"

namespace corvane::standin {

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
