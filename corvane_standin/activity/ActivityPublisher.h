#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/program/StandInLog.h"

namespace corvane::standin {

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

}  // namespace corvane::standin
