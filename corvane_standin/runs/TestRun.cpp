#include "corvane_standin/runs/TestRun.h"

#include <algorithm>
#include <cmath>

namespace corvane::standin {

namespace {

using Kind = TestOutcome::Kind;

}  // namespace

double roundedSeconds(Clock::Duration duration) {
  return std::round(std::chrono::duration<double, std::milli>(duration).count()) / 1000;
}

TestRun::TestRun(const PlannedTest& plan) : plan(&plan) {
  outcome.testId = plan.id;
  outcome.testName = plan.name;
}

void TestRun::finishStep(Clock::Duration duration) {
  const Kind kind = isAtTurn() ? plan->outcome.kind : Kind::passed;
  auto& step = addStep("passed");
  step.durationSeconds = roundedSeconds(duration);
  if (kind == Kind::healed) {
    step.status = "healed";
    step.healedByAI = true;
  } else if (kind == Kind::warning) {
    step.status = "warning";
    step.failureReason =
        plan->outcome.failureReason.value_or("The screen differs from the one expected here.");
  } else if (kind == Kind::failed) {
    step.status = "failed";
    step.failureReason =
        plan->outcome.failureReason.value_or("What this step describes was not on the screen.");
    skipRest();
  }
}

void TestRun::close(std::string_view status) {
  skipRest();
  outcome.status = status;
  double seconds = 0;
  for (const auto& step : outcome.steps) seconds += step.durationSeconds.value_or(0);
  outcome.durationSeconds = std::round(seconds * 1000) / 1000;
}

std::string_view TestRun::status() const {
  for (const std::string_view status : {"failed", "warning"}) {
    if (std::any_of(outcome.steps.begin(), outcome.steps.end(),
                    [status](const auto& step) { return step.status == status; })) {
      return status;
    }
  }
  return "passed";
}

AgentRunResult::Step& TestRun::addStep(std::string_view status) {
  const auto& planned = plan->steps[stepsDone()];
  AgentRunResult::Step step;
  step.index = static_cast<std::int64_t>(stepsDone());
  step.title = planned.title;
  step.description = planned.description;
  step.status = status;
  return outcome.steps.emplace_back(std::move(step));
}

void TestRun::skipRest() {
  while (!isOver()) addStep("skipped");
}

}  // namespace corvane::standin
