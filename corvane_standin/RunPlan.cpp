#include "corvane_standin/RunPlan.h"

#include <algorithm>

#include "CorvaneCore/text/Utf8.h"
#include "corvane_standin/StepText.h"
#include "corvane_standin/Workspace.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Target = AgentRunRequest::Target;
using Test = AgentContext::TestContext;
using Tests = std::vector<const Test*>;

std::string quoted(const std::string& name) {
  return "'" + name + "'";
}

/// "Tests: 'A', 'B'.", so that whoever named another can see what there is.
template <class Named>
std::string listing(const std::string& title, const std::vector<Named>& items) {
  std::string list;
  for (const auto& item : items) list += (list.empty() ? "" : ", ") + quoted(item.name);
  return title + ": " + (list.empty() ? "none" : list) + ".";
}

template <class Named>
const Named* findByName(const std::vector<Named>& items, const std::string& name) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&name](const auto& item) { return item.name == name; });
  return found == items.end() ? nullptr : &*found;
}

const Project& projectOf(const AgentRunRequest& request, const AgentContext& workspace) {
  if (const auto* project = findByName(workspace.projects, request.projectName)) return *project;
  throw RunRefused("There is no project named " + quoted(request.projectName) + ". " +
                   listing("Projects", workspace.projects));
}

/// Picks the tests that a target names out of a project.
struct TestPicker {
  const Project& project;

  Tests operator()(const Target::TestsByName& target) const {
    Tests tests;
    for (const auto& name : target.testNames) {
      const auto* test = findByName(project.tests, name);
      if (!test) refuse("no test named " + quoted(name) + ". " + listing("Tests", project.tests));
      tests.push_back(test);
    }
    return tests;
  }

  Tests operator()(const Target::SuiteByName& target) const {
    const auto* suite = findByName(project.suites, target.suiteName);
    if (!suite) {
      refuse("no suite named " + quoted(target.suiteName) + ". " +
             listing("Suites", project.suites));
    }
    Tests tests;
    for (const auto& id : suite->testIds) {
      const auto test = std::find_if(project.tests.begin(), project.tests.end(),
                                     [&id](const auto& each) { return each.id == id; });
      if (test != project.tests.end()) tests.push_back(&*test);
    }
    return tests;
  }

  Tests operator()(const Target::AllSuites&) const {
    Tests tests;
    for (const auto& test : project.tests) tests.push_back(&test);
    return tests;
  }

  [[noreturn]] void refuse(const std::string& lack) const {
    throw RunRefused("The project " + quoted(project.name) + " has " + lack);
  }
};

/// The platform in the spelling that results carry.
std::string platformOf(const AgentRunRequest& request, const Project& project) {
  const auto wanted = request.targetPlatform ? request.targetPlatform : project.platform;
  const std::string platform = asciiLowercase(wanted.value_or("iOS"));
  if (platform == "ios") return "iOS";
  if (platform == "android") return "android";
  throw RunRefused("There is no platform named " + quoted(*wanted) +
                   ". Platforms: 'iOS', 'android'.");
}

AgentRunResult::AppIdentity appOf(const Project& project, const std::string& platform) {
  const auto& bundle = platform == "iOS" ? project.bundleIdentifier : project.applicationId;
  if (bundle) return installedApp(*bundle);
  throw RunRefused("The project " + quoted(project.name) + " has no app for " + platform + ".",
                   "platformNotConfigured");
}

void requireParameters(const Test& test, const std::map<std::string, std::string>& values) {
  std::string missing;
  for (const auto& name : test.parameterNames.value_or(std::vector<std::string>())) {
    if (!values.contains(name)) missing += (missing.empty() ? "" : ", ") + quoted(name);
  }
  if (missing.empty()) return;
  throw RunRefused("The test " + quoted(test.name) + " needs values for the parameters " + missing +
                       ". Pass them in params.",
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
    planned.steps.push_back({stepTitle(step.type), substituteParameters(step.description, values)});
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
  const Project& project = projectOf(request, workspace);
  const Tests tests = std::visit(TestPicker{project}, request.target.choice);
  if (tests.empty()) throw RunRefused("There are no tests to run.");
  RunPlan plan;
  plan.platform = platformOf(request, project);
  plan.app = appOf(project, plan.platform);
  plan.builds = request.buildFirst.value_or(project.buildBeforeScheduledRuns.value_or(false));
  const auto values = request.params.value_or(std::map<std::string, std::string>());
  for (const auto* test : tests) plan.tests.push_back(planTest(*test, values, outcomes));
  return plan;
}

}  // namespace corvane::standin
