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

/// How long a request stays in its drop folder.
struct PickUpSeconds {
  const Script& script;
  const AgentContext& workspace;

  double operator()(const AgentRunRequest& request) const {
    return script.pickUpSeconds(request, workspace);
  }
  double operator()(const UnusableRequest&) const { return 0; }
  double operator()(const auto& request) const { return script.pickUpSeconds(request); }
};

}  // namespace

StandIn::StandIn(AgentPaths sharedPaths, StandInSettings givenSettings, const Clock& clock,
                 const StandInLog& log, AgentContext firstWorkspace)
    : paths(std::move(sharedPaths)),
      settings(std::move(givenSettings)),
      clock(clock),
      log(log),
      first(std::move(firstWorkspace)),
      script(settings),
      ids(settings.ids),
      opensAt(clock.now() + inSeconds(settings.coldStartSeconds)),
      creditBalance(settings.creditBalance),
      captures(StandInPaths(paths).capturesDirectory(), settings.captures, clock, log),
      results(paths, clock, log),
      dropFolder(paths, clock, log, ids,
                 [this](const DroppedRequest& dropped) {
                   return std::visit(PickUpSeconds{script, workspace->workspace()},
                                     dropped.request);
                 }),
      queue(results, clock, log, inSeconds(settings.heartbeatSeconds)),
      activity(paths, clock, log, inSeconds(settings.heartbeatSeconds)) {}

bool StandIn::tick() {
  if (hangs) return true;
  if (!workspace) {
    if (clock.now() < opensAt) return true;
    open();
  }
  const auto advance = queue.advance();
  if (advance == Job::Advance::crashed) return false;
  if (advance == Job::Advance::hung) {
    log.warn("doing nothing any more, as an outcome asks for");
    hangs = true;
    return true;
  }
  takeIn();
  publishActivity();
  return true;
}

void StandIn::quit() {
  if (hangs) return;
  queue.quit();
  if (workspace) publishActivity();
}

void StandIn::open() {
  paths.ensureAgentImportsDirectoryExists();
  paths.ensureAgentRunRequestsDirectoryExists();
  paths.ensureAgentResultsDirectoryExists();
  paths.ensureAgentMCPDirectoryExists();
  results.settleOrphans();
  workspace.emplace(paths, clock, log, std::move(first)).publish();
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
  return {clock, settings, *workspace, script, ids, creditBalance, captures};
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
  constexpr ScriptedJob::Sort sort{.source = "explore_flow",
                                   .kind = "exploration",
                                   .inHand = RunStatus::authoring,
                                   .failure = RunStatus::error};
  add(script.outcomeOf(request), {id, request.projectName, sort},
      [&] { return std::make_unique<ExploreJob>(std::move(request), services()); });
}

void StandIn::takeUp(const std::string& id, AgentLibraryRequest request) {
  log.info(id + ": library request, " + std::string(rawValue(request.action)));
  request.requestId = id;
  const ScriptedJob::Sort sort{.source = toolOf(request.action),
                               .kind = "library",
                               .inHand = RunStatus::received,
                               .failure = RunStatus::error};
  add(script.outcomeOf(request), {id, request.projectName, sort},
      [&] { return std::make_unique<LibraryJob>(std::move(request), services()); });
}

void StandIn::takeUp(const std::string& id, AgentTestSchema payload) {
  log.info(id + ": test payload for '" + payload.projectName + "'");
  constexpr ScriptedJob::Sort sort{.source = "create_test",
                                   .kind = "import",
                                   .inHand = RunStatus::validating,
                                   .failure = RunStatus::importFailed};
  add(script.outcomeOf(payload), {id, payload.projectName, sort},
      [&] { return std::make_unique<ImportJob>(id, std::move(payload), services()); });
}

template <class MakeJob>
void StandIn::add(const RequestOutcome& outcome, const ScriptedJob::Request& request,
                  MakeJob makeJob) {
  std::unique_ptr<Job> job;
  if (outcome.kind == RequestOutcome::Kind::fulfilled) {
    job = makeJob();
  } else {
    job = std::make_unique<ScriptedJob>(request, outcome, services());
  }
  job->tearResult(outcome.tornResult);
  queue.add(std::move(job));
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
