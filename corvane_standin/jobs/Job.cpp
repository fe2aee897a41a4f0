#include "corvane_standin/jobs/Job.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/files/Folder.h"

namespace corvane::standin {

namespace {

auto hasId(std::string_view id) {
  return [id](const auto& entry) { return entry.job->id() == id; };
}

}  // namespace

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

void ResultPublisher::publish(AgentRunResult result) const {
  result.updatedAt = clock.date();
  try {
    result.write(paths);
  } catch (const std::runtime_error& error) {
    log.warn(std::string("a result was not published: ") + error.what());
  }
}

void ResultPublisher::publishAgain(AgentRunResult result) const {
  if (fileExists(AgentRunResult::fileURL(result.requestId, paths))) publish(std::move(result));
}

void ResultPublisher::publishTorn(AgentRunResult result) const {
  const auto file = AgentRunResult::fileURL(result.requestId, paths);
  if (!fileExists(file)) return;
  result.updatedAt = clock.date();
  try {
    const std::string whole = AgentWire::encode(result);
    writeFileWhole(file, std::string_view(whole).substr(0, whole.size() / 2));
  } catch (const std::runtime_error& error) {
    log.warn(std::string("a torn result was not published: ") + error.what());
  }
}

void ResultPublisher::settleOrphans() const {
  for (const auto& file : listVisible(paths.agentResultsDirectory())) {
    if (file.extension() != ".json") continue;
    try {
      auto result = AgentRunResult::read(file);
      // The id decides where a result is written, so one that names another file is left alone.
      if (result.terminal || result.requestId != file.stem()) continue;
      result.setStatus(RunStatus::error);
      result.message = "Corvane quit before the run finished.";
      result.progress.reset();
      result.queuePosition.reset();
      log.info(result.requestId + ": settled as error, an earlier life left it unfinished");
      publish(std::move(result));
    } catch (const std::runtime_error& error) {
      log.warn("a result file is left as it is: " + std::string(error.what()));
    }
  }
}

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

Job::Advance JobQueue::advance() {
  mendTornResults();
  auto advance = Job::Advance::waited;
  if (!active && !waiting.empty()) {
    active = std::move(waiting.front());
    waiting.pop_front();
    active->startedAt = clock.date();
  }
  if (active) {
    advance = active->job->advance();
    if (advance == Job::Advance::crashed || advance == Job::Advance::hung) return advance;
    advance == Job::Advance::changed ? publishAgain(*active) : refresh(*active);
    if (active->job->result().terminal) active.reset();
  }
  std::int64_t position = 0;
  for (auto& entry : waiting) {
    entry.job->queueAt(++position) ? publishAgain(entry) : refresh(entry);
  }
  return advance;
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
  const bool isTorn = result.terminal && entry.job->tornResult();
  isTorn ? publishTorn(entry) : results.publishAgain(result);
  entry.published = clock.now();
  if (result.terminal) {
    log.info(result.requestId + ": " + result.status + ". " + result.message.value_or(""));
  }
}

void JobQueue::publishTorn(const Entry& entry) {
  const auto& result = entry.job->result();
  results.publishTorn(result);
  if (const auto seconds = entry.job->tornResult()->wholeAfterSeconds) {
    torn.push_back({result, Stopwatch(clock), *seconds});
  }
}

void JobQueue::mendTornResults() {
  std::erase_if(torn, [this](const TornEntry& entry) {
    if (!entry.age.hasReached(entry.wholeAfterSeconds)) return false;
    results.publishAgain(entry.result);
    return true;
  });
}

void JobQueue::refresh(Entry& entry) {
  if (entry.job->heartbeats() && clock.now() - entry.published >= heartbeat) publishAgain(entry);
}

}  // namespace corvane::standin
