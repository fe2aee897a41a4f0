#include "corvane_standin/jobs/JobQueue.h"

#include <algorithm>
#include <utility>

namespace corvane::standin {

namespace {

auto hasId(std::string_view id) {
  return [id](const auto& entry) { return entry.job->id() == id; };
}

}  // namespace

bool JobQueue::contains(std::string_view id) const {
  return (active && hasId(id)(*active)) || std::any_of(waiting.begin(), waiting.end(), hasId(id));
}

void JobQueue::add(std::unique_ptr<Job> job) {
  results.publish(job->result());
  waiting.push_back({std::move(job), clock.now()});
}

void JobQueue::cancel(std::string_view id) {
  if (active && hasId(id)(*active)) {
    active->job->cancel();
    return;
  }
  const auto found = std::find_if(waiting.begin(), waiting.end(), hasId(id));
  if (found == waiting.end()) return;
  found->job->end(RunStatus::cancelled, "Cancelled while it waited in the queue.");
  publishAgain(*found);
  waiting.erase(found);
}

AgentActivity JobQueue::activity() const {
  AgentActivity activity;
  if (active) {
    const auto& job = *active->job;
    activity.active =
        AgentActivity::ActiveRequest{job.id(), std::string(job.kind()), active->startedAt};
    activity.authoringActive = job.isAuthoring();
  }
  for (const auto& entry : waiting) {
    const auto position = static_cast<std::int64_t>(activity.queued.size()) + 1;
    activity.queued.push_back({entry.job->id(), std::string(entry.job->kind()), position});
  }
  return activity;
}

bool JobQueue::advance() {
  if (!active && !waiting.empty()) {
    active = std::move(waiting.front());
    waiting.pop_front();
    active->startedAt = clock.date();
  }
  if (active) {
    const auto advance = active->job->advance();
    if (advance == Job::Advance::crashed) return false;
    advance == Job::Advance::changed ? publishAgain(*active) : refresh(*active);
    if (active->job->result().terminal) active.reset();
  }
  std::int64_t position = 0;
  for (auto& entry : waiting) {
    entry.job->queueAt(++position) ? publishAgain(entry) : refresh(entry);
  }
  return true;
}

void JobQueue::quit() {
  if (active) {
    active->job->end(RunStatus::error, "Corvane quit while the request was active.");
    publishAgain(*active);
    active.reset();
  }
  for (auto& entry : waiting) {
    entry.job->end(RunStatus::error, "Corvane quit while the request waited in the queue.");
    publishAgain(entry);
  }
  waiting.clear();
}

void JobQueue::publishAgain(Entry& entry) {
  const auto& result = entry.job->result();
  results.publishAgain(result);
  entry.published = clock.now();
  if (result.terminal) {
    log.info(result.requestId + ": " + result.status + ". " + result.message.value_or(""));
  }
}

void JobQueue::refresh(Entry& entry) {
  if (entry.job->heartbeats() && clock.now() - entry.published >= heartbeat) publishAgain(entry);
}

}  // namespace corvane::standin
