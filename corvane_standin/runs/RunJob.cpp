#include "corvane_standin/runs/RunJob.h"

#include <algorithm>
#include <utility>

#include "corvane_standin/runs/TestRun.h"

namespace corvane::standin {

namespace {

using Kind = TestOutcome::Kind;

/// The test whose pictures are the first to look at: one that failed, else the last.
const AgentRunResult::Test& tracedTest(const std::vector<AgentRunResult::Test>& tests) {
  const auto failed = std::find_if(tests.begin(), tests.end(),
                                   [](const auto& test) { return test.status == "failed"; });
  return failed == tests.end() ? tests.back() : *failed;
}

}  // namespace

RunJob::RunJob(AgentRunRequest request, const Services& services, std::string_view source)
    : Job(request.requestId, source, "run"),
      request(std::move(request)),
      services(services),
      stopwatch(services.clock) {
  state.projectName = this->request.projectName;
}

bool RunJob::heartbeats() const {
  return !isTurning(Kind::wedged);
}

Job::Advance RunJob::advance() {
  switch (stage) {
    case Stage::waiting:
      return begin();
    case Stage::building:
      return build();
    case Stage::running:
      return play();
  }
  return Advance::waited;
}

Job::Advance RunJob::begin() {
  try {
    plan = planRun(request, services.workspace.workspace(), services.script);
  } catch (const RequestRefused& refused) {
    endRefused(refused);
    return Advance::changed;
  }
  for (const auto& test : plan->tests) {
    if (test.outcome.tornResult) tearResult(test.outcome.tornResult);
  }
  state.platform = plan->platform;
  stopwatch.restart();
  if (plan->builds) {
    stage = Stage::building;
    enter(RunStatus::building);
    state.message = "Building and installing '" + request.projectName + "'.";
  } else {
    startTests();
  }
  return Advance::changed;
}

Job::Advance RunJob::build() {
  if (cancelRequested) {
    endCancelled();
  } else if (!stopwatch.hasReached(services.settings.buildSeconds)) {
    return Advance::waited;
  } else if (const auto failure = plan->buildFailure()) {
    end(RunStatus::buildFailed, *failure);
  } else {
    startTests();
  }
  return Advance::changed;
}

Job::Advance RunJob::play() {
  if (isTurning(Kind::hold) || isTurning(Kind::wedged)) {
    if (!cancelRequested) return Advance::waited;
    endCancelled();
    return Advance::changed;
  }
  const auto& test = current->planned();
  if (!stopwatch.hasReached(test.outcome.stepSeconds.value_or(services.settings.stepSeconds))) {
    return Advance::waited;
  }
  if (isTurning(Kind::crash)) return Advance::crashed;
  if (isTurning(Kind::hang)) return Advance::hung;
  finishStep();
  cancelRequested ? endCancelled() : toNextStep();
  return Advance::changed;
}

void RunJob::startTests() {
  stage = Stage::running;
  enter(RunStatus::running);
  state.appUnderTest = plan->app;
  AgentRunResult::Progress progress;
  progress.totalSteps = static_cast<std::int64_t>(plan->stepCount());
  state.progress = progress;
  toNextStep();
}

void RunJob::finishStep() {
  const auto index = current->stepsDone();
  current->finishStep(stopwatch.elapsed());
  const auto& step = current->result().steps[index];
  state.progress->lastStepTitle = step.title;
  state.progress->lastStepStatus = step.status;
  if (capture) capture->afterStep(index, step.status == "failed");
  creditsSpent += step.healedByAI ? 1.5 : 0.5;
}

void RunJob::toNextStep() {
  while (!current || current->isOver()) {
    if (current) {
      closeTest(current->status());
      services.workspace.record(request.projectName, closed.back());
    }
    if (closed.size() == plan->tests.size()) return finish();
    const auto& next = plan->tests[closed.size()];
    if (next.outcome.kind == Kind::blocked) {
      return endBlocked(next.outcome);
    }
    current.emplace(next);
    capture = services.captures.begin(id(), next, request.projectName, plan->platform);
  }
  std::size_t stepsBefore = current->stepsDone();
  for (const auto& test : closed) stepsBefore += test.steps.size();
  state.progress->currentStep = static_cast<std::int64_t>(stepsBefore) + 1;
  if (capture) capture->beforeStep(current->stepsDone());
  stopwatch.restart();
}

void RunJob::closeTest(std::string_view status) {
  current->close(status);
  closed.push_back(current->result());
  if (capture) closed.back().trace = capture->trace();
  // Whoever follows the run sees what is over already.
  state.tests = closed;
  capture.reset();
  current.reset();
}

void RunJob::finish() {
  end(overallStatus(closed), overallMessage(*plan, closed));
}

void RunJob::endCancelled() {
  end(RunStatus::cancelled, stage == Stage::building ? "Cancelled while the app was being built."
                                                     : "Cancelled at a step boundary.");
}

void RunJob::end(RunStatus status, std::string message) {
  if (current) closeTest(rawValue(status));
  Job::end(status, std::move(message));
  if (!plan) return;
  if (!closed.empty()) {
    state.summary = summaryOf(closed);
    state.trace = tracedTest(closed).trace;
    state.tests = std::move(closed);
  }
  services.creditBalance -= creditsSpent;
  state.creditsSpent = creditsSpent;
  state.creditBalance = services.creditBalance;
}

bool RunJob::isTurning(Kind kind) const {
  return current && current->isAtTurn() && current->planned().outcome.kind == kind;
}

}  // namespace corvane::standin
