#include "corvane_standin/runs/RunPlan.h"

#include <algorithm>

#include "corvane_standin/runs/StepText.h"
#include "corvane_standin/workspace/Lookup.h"
#include "corvane_standin/workspace/ProjectApp.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Target = AgentRunRequest::Target;
using Test = AgentContext::TestContext;
using Tests = std::vector<const Test*>;

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
                     const std::map<std::string, TestOutcome>& outcomes) {
  requireParameters(test, values);
  PlannedTest planned;
  planned.id = test.id;
  planned.name = test.name;
  for (const auto& step : test.steps) {
    planned.steps.push_back(
        {stepTitle(step.type), substituteParameters(step.description, values), step.type});
  }
  if (const auto named = outcomes.find(test.name); named != outcomes.end()) {
    planned.outcome = named->second;
  }
  planned.turningStep = turningStepOf(planned.outcome, planned.steps.size());
  return planned;
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

RunPlan planRun(const AgentRunRequest& request, const AgentContext& workspace,
                const std::map<std::string, TestOutcome>& outcomes) {
  const Project& project = requireProject(workspace, request.projectName);
  const Tests tests = std::visit(TestPicker{project}, request.target.choice);
  if (tests.empty()) throw RequestRefused("There are no tests to run.");
  RunPlan plan;
  plan.platform = platformFor(request.targetPlatform, project);
  plan.app = appFor(plan.platform, project);
  plan.builds = request.buildFirst.value_or(project.buildBeforeScheduledRuns.value_or(false));
  const auto values = request.params.value_or(std::map<std::string, std::string>());
  for (const auto* test : tests) plan.tests.push_back(planTest(*test, values, outcomes));
  return plan;
}

}  // namespace corvane::standin
