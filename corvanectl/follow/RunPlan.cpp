#include "corvanectl/follow/RunPlan.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/results/AnswerTexts.h"

namespace corvane::ctl {

namespace {

using Project = AgentContext::ProjectContext;
using Test = AgentContext::TestContext;

RunPlan::Test planned(const Test& test) {
  RunPlan::Test planned{test.name, {}};
  for (const auto& step : test.steps) planned.steps.push_back(step.description);
  return planned;
}

/// Adds the tests of `all` whose `member` is one of `wanted`, in the order of those; false when one
/// is missing.
bool addAll(RunPlan& plan, const std::vector<Test>& all, std::string Test::* member,
            const std::vector<std::string>& wanted) {
  return std::ranges::all_of(wanted, [&](const std::string& value) {
    const auto found = std::ranges::find(all, value, member);
    if (found == all.end()) return false;
    plan.tests.push_back(planned(*found));
    return true;
  });
}

/// The place of a step that runs in test `index` of the plan.
events::StepStarted stepOf(const RunPlan& plan, std::size_t index, std::int64_t step) {
  const RunPlan::Test& test = plan.tests[index];
  return {.test = TestPlace{index, plan.tests.size(), test.name},
          .index = step,
          .count = static_cast<std::int64_t>(test.steps.size()),
          .description = test.steps[static_cast<std::size_t>(step)]};
}

/// The place of a step that is counted through the whole run.
std::optional<events::StepStarted> stepOfRun(const RunPlan& plan, std::int64_t step) {
  for (std::size_t i = 0; i < plan.tests.size(); ++i) {
    const auto count = static_cast<std::int64_t>(plan.tests[i].steps.size());
    if (step < count) return stepOf(plan, i, step);
    step -= count;
  }
  return std::nullopt;
}

}  // namespace

std::int64_t RunPlan::stepCount() const {
  std::size_t count = 0;
  for (const Test& test : tests) count += test.steps.size();
  return static_cast<std::int64_t>(count);
}

std::optional<RunPlan> planOf(const Project& project, const RunTarget& target) {
  RunPlan plan;
  if (!target.tests.empty()) {
    if (!addAll(plan, project.tests, &Test::name, target.tests)) return std::nullopt;
  } else if (target.suite) {
    const auto suite =
        std::ranges::find(project.suites, *target.suite, &AgentContext::SuiteContext::name);
    if (suite == project.suites.end()) return std::nullopt;
    if (!addAll(plan, project.tests, &Test::id, suite->testIds)) return std::nullopt;
  } else {
    for (const Test& test : project.tests) plan.tests.push_back(planned(test));
  }
  return plan;
}

std::optional<Project> describedProject(std::string_view answer) {
  try {
    const AnyCodable snapshot = readJson(AnswerTexts::snapshotIn(answer));
    const AnyCodable* project = snapshot.find("project");
    if (project) return decodeValue<Project>(*project);
  } catch (const DecodeError&) {
    // It is an error that the tool reports, or of a form that this version does not know.
  }
  return std::nullopt;
}

events::StepStarted placeOf(const AgentRunResult::Progress& progress, std::size_t finished,
                            const RunPlan* plan) {
  const std::int64_t step = std::max<std::int64_t>(progress.currentStep, 1) - 1;
  events::StepStarted place{
      .test = {}, .index = step, .count = progress.totalSteps, .description = {}};
  if (!plan) return place;
  if (progress.totalSteps == plan->stepCount()) {
    const auto found = stepOfRun(*plan, step);
    if (found && (finished == 0 || found->test->index == finished)) return *found;
  } else if (finished < plan->tests.size()) {
    const auto count = static_cast<std::int64_t>(plan->tests[finished].steps.size());
    if (progress.totalSteps == count && step < count) return stepOf(*plan, finished, step);
  }
  return place;
}

std::optional<double> secondsLeft(const RunPlan& plan, std::size_t current, double seconds,
                                  const TestDurations& earlier) {
  double left = 0;
  for (std::size_t i = current; i < plan.tests.size(); ++i) {
    const auto took = earlier.find(plan.tests[i].name);
    if (took == earlier.end()) return std::nullopt;
    left += i == current ? std::max(took->second - seconds, 0.0) : took->second;
  }
  return left;
}

}  // namespace corvane::ctl
