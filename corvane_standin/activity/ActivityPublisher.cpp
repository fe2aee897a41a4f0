#include "corvane_standin/activity/ActivityPublisher.h"

#include <utility>

namespace corvane::standin {

void ActivityPublisher::publish(AgentActivity activity) {
  activity.updatedAt = {};
  auto undated = AgentWire::encode(activity);
  const auto now = clock.now();
  if (last && last->undated == undated && now - last->at < heartbeat) return;
  if (last && last->written && !fileExists(paths.agentActivityFile())) return;
  last = Published{std::move(undated), now};
  activity.updatedAt = clock.date();
  try {
    activity.write(paths);
  } catch (const std::runtime_error& error) {
    last->written = false;
    log.warn(std::string("the activity was not published: ") + error.what());
  }
}

}  // namespace corvane::standin
