#include "corvane_standin/jobs/ScriptedJob.h"

#include <stdexcept>
#include <utility>

namespace corvane::standin {

namespace {

using Kind = RequestOutcome::Kind;

}  // namespace

ScriptedJob::ScriptedJob(const Request& request, RequestOutcome givenOutcome,
                         const Services& services)
    : Job(request.id, request.sort.source, request.sort.kind),
      sort(request.sort),
      outcome(std::move(givenOutcome)),
      services(services) {
  if (!request.projectName.empty()) state.projectName = request.projectName;
}

bool ScriptedJob::heartbeats() const {
  return !turn || outcome.kind != Kind::wedged;
}

bool ScriptedJob::isAuthoring() const {
  return turn && sort.inHand == RunStatus::authoring;
}

Job::Advance ScriptedJob::advance() {
  if (!turn) {
    turn.emplace(services.clock);
    enter(sort.inHand);
    return Advance::changed;
  }
  if (cancelRequested) {
    end(RunStatus::cancelled, "Cancelled before anything was done.");
    return Advance::changed;
  }
  return turn->hasReached(services.settings.stepSeconds) ? turnOut() : Advance::waited;
}

Job::Advance ScriptedJob::turnOut() {
  switch (outcome.kind) {
    case Kind::wedged:
    case Kind::hold:
      return Advance::waited;
    case Kind::hang:
      return Advance::hung;
    case Kind::crash:
      return Advance::crashed;
    case Kind::blocked:
      endBlocked(outcome);
      return Advance::changed;
    case Kind::failed:
      fail();
      return Advance::changed;
    case Kind::fulfilled:
      break;
  }
  throw std::logic_error("a request that is to be fulfilled is none of a script's");
}

void ScriptedJob::fail() {
  const auto reason = outcome.failureReason.value_or("Corvane could not do what was asked.");
  if (sort.failure == RunStatus::importFailed) {
    ValidationIssue issue;
    issue.code = ValidationIssue::Code::invalidEnumValue;
    issue.path = "tests[0]";
    issue.message = reason;
    state.validationIssues = {issue};
  }
  end(sort.failure, reason);
}

}  // namespace corvane::standin
