#include "corvane_standin/StandIn.h"

#include <memory>
#include <utility>

#include "corvane_standin/exploration/ExploreJob.h"
#include "corvane_standin/imports/ImportJob.h"
#include "corvane_standin/library/LibraryJob.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/runs/RunJob.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

Clock::Duration inSeconds(double seconds) {
  return std::chrono::duration_cast<Clock::Duration>(std::chrono::duration<double>(seconds));
}

}  // namespace

StandIn::StandIn(AgentPaths sharedPaths, StandInSettings givenSettings, const Clock& clock,
                 const StandInLog& log)
    : paths(std::move(sharedPaths)),
      settings(std::move(givenSettings)),
      clock(clock),
      log(log),
      opensAt(clock.now() + inSeconds(settings.coldStartSeconds)),
      creditBalance(settings.creditBalance),
      captures(StandInPaths(paths).capturesDirectory(), settings.captures, clock, log),
      results(paths, clock, log),
      dropFolder(paths, log),
      queue(results, clock, log, inSeconds(settings.heartbeatSeconds)),
      activity(paths, clock, log, inSeconds(settings.heartbeatSeconds)) {
  settings.outcomes.merge(firstOutcomes());
}

bool StandIn::tick() {
  if (!workspace) {
    if (clock.now() < opensAt) return true;
    open();
  }
  if (!queue.advance()) return false;
  takeIn();
  publishActivity();
  return true;
}

void StandIn::quit() {
  queue.quit();
  if (workspace) publishActivity();
}

void StandIn::open() {
  paths.ensureAgentImportsDirectoryExists();
  paths.ensureAgentRunRequestsDirectoryExists();
  paths.ensureAgentResultsDirectoryExists();
  paths.ensureAgentMCPDirectoryExists();
  results.settleOrphans();
  workspace.emplace(paths, clock, log).publish();
}

void StandIn::takeIn() {
  auto arrivals = dropFolder.take();
  for (auto& dropped : arrivals.requests) {
    if (queue.contains(dropped.id)) {
      log.warn(dropped.id + ": dropped again while it is in hand, ignored");
      continue;
    }
    std::visit([&](auto& request) { takeUp(dropped.id, std::move(request)); }, dropped.request);
  }
  for (const auto& id : arrivals.cancelled) {
    log.info(id + ": cancel marker");
    queue.cancel(id);
  }
}

Services StandIn::services() {
  return {clock, settings, *workspace, creditBalance, captures};
}

void StandIn::publishActivity() {
  // A program that is stuck does not tell what it is doing either.
  if (!queue.heartbeats()) return;
  auto now = queue.activity();
  if (const auto& device = workspace->workspace().device) {
    now.device = AgentActivity::Device{device->platform, device->name, device->connected};
  }
  activity.publish(std::move(now));
}

void StandIn::takeUp(const std::string& id, AgentRunRequest request) {
  log.info(id + ": run request for '" + request.projectName + "'");
  request.requestId = id;
  queue.add(std::make_unique<RunJob>(std::move(request), services()));
}

void StandIn::takeUp(const std::string& id, AgentExploreRequest request) {
  log.info(id + ": explore request for '" + request.projectName + "'");
  request.requestId = id;
  queue.add(std::make_unique<ExploreJob>(std::move(request), services()));
}

void StandIn::takeUp(const std::string& id, AgentLibraryRequest request) {
  log.info(id + ": library request, " + std::string(rawValue(request.action)));
  request.requestId = id;
  queue.add(std::make_unique<LibraryJob>(std::move(request), services()));
}

void StandIn::takeUp(const std::string& id, AgentTestSchema payload) {
  log.info(id + ": test payload for '" + payload.projectName + "'");
  queue.add(std::make_unique<ImportJob>(id, std::move(payload), services()));
}

void StandIn::takeUp(const std::string& id, const UnusableRequest& request) {
  AgentRunResult result;
  result.requestId = id;
  result.source = request.source;
  result.setStatus(RunStatus::error);
  result.message = "Corvane cannot use the request file: " + request.reason;
  log.warn(id + ": " + *result.message);
  results.publish(std::move(result));
}

}  // namespace corvane::standin
