#pragma once

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/program/StandInLog.h"

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

}  // namespace corvane::standin
