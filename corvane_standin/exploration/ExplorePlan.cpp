#include "corvane_standin/exploration/ExplorePlan.h"

#include "CorvaneCore/authoring/InteractionType.h"
#include "corvane_standin/exploration/GoalMap.h"
#include "corvane_standin/exploration/GoalSteps.h"
#include "corvane_standin/workspace/Lookup.h"
#include "corvane_standin/workspace/ProjectApp.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Test = AgentContext::TestContext;

AgentContext::StepSummary runTestStep(const std::string& testName) {
  AgentContext::StepSummary step;
  step.type = rawValue(InteractionType::runTest);
  step.description = "Run the test \"" + testName + "\"";
  return step;
}

/// The test that the exploration resumes from, if any. The id wins when both are set.
const Test* prefixTest(const AgentExploreRequest& request, const Project& project) {
  if (request.resumeFromTestId) {
    if (const auto* test = findById(project.tests, *request.resumeFromTestId)) return test;
    throw RequestRefused("The project " + inQuotes(project.name) + " has no test with the id " +
                         inQuotes(*request.resumeFromTestId) + " to resume from. " +
                         listing("Tests", project.tests));
  }
  return request.resumeFromTestName ? &requireTest(project, *request.resumeFromTestName) : nullptr;
}

/// The last of `earlier` that the goal names, which then need not be explored again.
const Test* reusedTest(const Goal& goal, const std::vector<Test>& earlier) {
  const Test* reused = nullptr;
  for (const auto& clause : goal.clauses) {
    for (const auto& test : earlier) {
      if (clause.find(test.name) != std::string::npos) reused = &test;
    }
  }
  return reused;
}

/// The clause that only names the reused test is what its runTest step stands for.
Goal withoutReuse(Goal goal, const Test& reused) {
  std::erase_if(goal.clauses, [&reused](const std::string& clause) {
    return clause.find(reused.name) != std::string::npos;
  });
  return goal;
}

std::vector<Test> testsToward(const AgentExploreRequest& request, const Project& project) {
  const auto goals = parseGoals(request.goal);
  const auto* prefix = prefixTest(request, project);
  std::vector<Test> tests;
  for (const auto& goal : goals) {
    Test test;
    test.name = goals.size() == 1 ? request.testName.value_or(goal.name) : goal.name;
    test.description = goal.name;
    test.autoScaffold = true;
    const auto* reused = reusedTest(goal, tests);
    const auto* first = reused ? reused : prefix;
    if (first) test.steps.push_back(runTestStep(first->name));
    const auto explored = stepsToward(reused ? withoutReuse(goal, *reused) : goal);
    test.steps.insert(test.steps.end(), explored.begin(), explored.end());
    tests.push_back(std::move(test));
  }
  return tests;
}

}  // namespace

std::size_t ExplorePlan::stepCount() const {
  std::size_t count = 0;
  for (const auto& test : tests) count += test.steps.size();
  return count;
}

bool needsProject(const AgentExploreRequest& request, const AgentContext& workspace) {
  if (findByName(workspace.projects, request.projectName)) return false;
  const bool hasIdentity = (request.iosProjectPath && request.bundleIdentifier) ||
                           (request.androidProjectPath && request.applicationId);
  if (hasIdentity) return true;
  throw RequestRefused(
      "There is no project named " + inQuotes(request.projectName) +
          ". To create it pass iosProjectPath with bundleIdentifier, or androidProjectPath with "
          "applicationId. " +
          listing("Projects", workspace.projects),
      "missingIdentity");
}

ExplorePlan planExploration(const AgentExploreRequest& request, const AgentContext& workspace) {
  const auto& project = requireProject(workspace, request.projectName);
  ExplorePlan plan;
  plan.platform = platformFor(request.targetPlatform, project);
  plan.app = appFor(plan.platform, project);
  plan.builds = project.buildBeforeScheduledRuns.value_or(false);
  plan.tests = testsToward(request, project);
  if (plan.tests.empty()) throw RequestRefused("The goal is empty: there is nothing to explore.");
  return plan;
}

}  // namespace corvane::standin
