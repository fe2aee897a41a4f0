#include "corvane_standin/jobs/Job.h"

#include <utility>

namespace corvane::standin {

Job::Job(std::string_view requestId, std::string_view source, std::string_view kind) : name(kind) {
  state.requestId = requestId;
  state.source = source;
  state.setStatus(RunStatus::received);
}

bool Job::queueAt(std::int64_t position) {
  if (state.queuePosition == position) return false;
  enter(RunStatus::queued);
  state.queuePosition = position;
  return true;
}

void Job::end(RunStatus status, std::string message) {
  enter(status);
  state.message = std::move(message);
}

void Job::endBlocked(std::string code, std::string message) {
  state.blocked = AgentRunResult::BlockedInfo{std::move(code), message, std::nullopt};
  end(RunStatus::blocked, std::move(message));
}

void Job::endRefused(const RequestRefused& refused) {
  refused.code ? endBlocked(*refused.code, refused.what()) : end(RunStatus::error, refused.what());
}

void Job::enter(RunStatus status) {
  state.setStatus(status);
  state.message.reset();
  state.progress.reset();
  state.queuePosition.reset();
}

}  // namespace corvane::standin
