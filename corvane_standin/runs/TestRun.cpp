#include "corvane_standin/runs/TestRun.h"

#include <algorithm>
#include <cmath>

#include "corvane_standin/steps/Steps.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

using Kind = TestOutcome::Kind;
using Project = AgentContext::ProjectContext;
using Target = AgentRunRequest::Target;
using Test = AgentContext::TestContext;
using Tests = std::vector<const Test*>;
using TestResults = std::vector<AgentRunResult::Test>;

/// Picks the tests that a target names out of a project.
struct TestPicker {
  const Project& project;

  Tests operator()(const Target::TestsByName& target) const {
    Tests tests;
    for (const auto& name : target.testNames) tests.push_back(&requireTest(project, name));
    return tests;
  }

  Tests operator()(const Target::SuiteByName& target) const {
    const auto* suite = findByName(project.suites, target.suiteName);
    if (!suite) {
      throw RequestRefused("The project " + inQuotes(project.name) + " has no suite named " +
                           inQuotes(target.suiteName) + ". " + listing("Suites", project.suites));
    }
    Tests tests;
    for (const auto& id : suite->testIds) {
      if (const auto* test = findById(project.tests, id)) tests.push_back(test);
    }
    return tests;
  }

  Tests operator()(const Target::AllSuites&) const {
    Tests tests;
    for (const auto& test : project.tests) tests.push_back(&test);
    return tests;
  }
};

void requireParameters(const Test& test, const std::map<std::string, std::string>& values) {
  std::string missing;
  for (const auto& name : test.parameterNames.value_or(std::vector<std::string>())) {
    if (!values.contains(name)) missing += (missing.empty() ? "" : ", ") + inQuotes(name);
  }
  if (missing.empty()) return;
  throw RequestRefused("The test " + inQuotes(test.name) + " needs values for the parameters " +
                           missing + ". Pass them in params.",
                       "missingParameters");
}

std::size_t turningStepOf(const TestOutcome& outcome, std::size_t stepCount) {
  if (stepCount == 0 || outcome.kind == TestOutcome::Kind::hold) return 0;
  const auto step =
      outcome.failedStep ? static_cast<std::size_t>(*outcome.failedStep) : stepCount / 2;
  return std::min(step, stepCount - 1);
}

PlannedTest planTest(const Test& test, const std::map<std::string, std::string>& values,
                     Script& script) {
  PlannedTest planned;
  planned.id = test.id;
  planned.name = test.name;
  for (const auto& step : test.steps) {
    planned.steps.push_back(
        {stepTitle(step.type), substituteParameters(step.description, values), step.type});
  }
  planned.outcome = script.outcomeOf(test.name);
  planned.turningStep = turningStepOf(planned.outcome, planned.steps.size());
  return planned;
}

auto hasStatus(std::string_view status) {
  return [status](const auto& each) { return each.status == status; };
}

/// Failed, warning or passed, whichever is the worst among steps or tests.
template <class Items>
RunStatus worstStatus(const Items& items) {
  for (const auto status : {RunStatus::failed, RunStatus::warning}) {
    if (std::any_of(items.begin(), items.end(), hasStatus(rawValue(status)))) return status;
  }
  return RunStatus::passed;
}

/// In seconds to the millisecond, as results carry durations.
double roundedSeconds(double milliseconds) {
  return std::round(milliseconds) / 1000;
}

std::string remarkOn(const AgentRunResult::Test& test, const TestOutcome& outcome) {
  if (test.status == "failed") return " '" + test.testName + "' failed.";
  if (test.status == "warning") return " '" + test.testName + "' ended with a warning.";
  const auto healed = std::find_if(test.steps.begin(), test.steps.end(), hasStatus("healed"));
  if (healed == test.steps.end()) return {};
  return " '" + test.testName + "' passed only after Corvane adapted at step index " +
         std::to_string(healed->index) + ": " +
         outcome.failureReason.value_or("the screen was not the one expected.");
}

}  // namespace

std::size_t RunPlan::stepCount() const {
  std::size_t count = 0;
  for (const auto& test : tests) count += test.steps.size();
  return count;
}

std::optional<std::string> RunPlan::buildFailure() const {
  for (const auto& test : tests) {
    if (test.outcome.kind != TestOutcome::Kind::buildFailed) continue;
    return test.outcome.failureReason.value_or(
        "The app does not build: CartView:88: cannot find 'basketTotal' in scope");
  }
  return std::nullopt;
}

Tests testsOf(const AgentRunRequest& request, const AgentContext& workspace) {
  const Project& project = requireProject(workspace, request.projectName);
  return std::visit(TestPicker{project}, request.target.choice);
}

RunPlan planRun(const AgentRunRequest& request, const AgentContext& workspace, Script& script) {
  const Tests tests = testsOf(request, workspace);
  const Project& project = requireProject(workspace, request.projectName);
  if (tests.empty()) throw RequestRefused("There are no tests to run.");
  RunPlan plan;
  plan.platform = platformFor(request.targetPlatform, project);
  plan.app = appFor(plan.platform, project);
  plan.builds = request.buildFirst.value_or(project.buildBeforeScheduledRuns.value_or(false));
  const auto values = request.params.value_or(std::map<std::string, std::string>());
  // Only a run that begins counts for what its tests turn out to be.
  for (const auto* test : tests) requireParameters(*test, values);
  for (const auto* test : tests) plan.tests.push_back(planTest(*test, values, script));
  return plan;
}

TestRun::TestRun(const PlannedTest& plan) : plan(&plan) {
  outcome.testId = plan.id;
  outcome.testName = plan.name;
}

void TestRun::finishStep(Clock::Duration duration) {
  const Kind kind = isAtTurn() ? plan->outcome.kind : Kind::passed;
  auto& step = addStep("passed");
  step.durationSeconds =
      roundedSeconds(std::chrono::duration<double, std::milli>(duration).count());
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
  outcome.durationSeconds = roundedSeconds(seconds * 1000);
}

std::string_view TestRun::status() const {
  return rawValue(worstStatus(outcome.steps));
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

RunStatus overallStatus(const TestResults& tests) {
  return worstStatus(tests);
}

std::string overallMessage(const RunPlan& plan, const TestResults& tests) {
  const auto summary = summaryOf(tests);
  std::string message = std::to_string(summary.testsPassed) + " of " +
                        std::to_string(summary.tests) +
                        (summary.tests == 1 ? " test passed." : " tests passed.");
  for (std::size_t i = 0; i < tests.size(); ++i) {
    message += remarkOn(tests[i], plan.tests[i].outcome);
  }
  return message;
}

AgentRunResult::Summary summaryOf(const TestResults& tests) {
  AgentRunResult::Summary summary;
  summary.tests = static_cast<std::int64_t>(tests.size());
  summary.testsPassed = std::count_if(tests.begin(), tests.end(), hasStatus("passed"));
  for (const auto& test : tests) summary.durationSeconds += test.durationSeconds;
  summary.durationSeconds = roundedSeconds(summary.durationSeconds * 1000);
  return summary;
}

}  // namespace corvane::standin
