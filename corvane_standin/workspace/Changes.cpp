#include "corvane_standin/workspace/Changes.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/text/Uuid.h"
#include "corvane_standin/runs/StepText.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

using Project = AgentContext::ProjectContext;
using Step = AgentContext::StepSummary;
using Suite = AgentContext::SuiteContext;
using Test = AgentContext::TestContext;

bool contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

void putIntoSuite(Project& project, const std::string& testId, const std::string& suiteName) {
  for (auto& suite : project.suites) std::erase(suite.testIds, testId);
  auto* suite = findByName(project.suites, suiteName);
  if (!suite) suite = &project.suites.emplace_back(Suite{suiteName, {}});
  suite->testIds.push_back(testId);
}

void collectParameters(const std::vector<Step>& steps, std::vector<std::string>& names) {
  for (const auto& step : steps) {
    for (auto& name : placeholdersIn(step.description)) {
      if (!contains(names, name)) names.push_back(std::move(name));
    }
    if (step.children) collectParameters(*step.children, names);
  }
}

}  // namespace

Project& addProject(AgentContext& workspace, const ProjectIdentity& identity) {
  Project project;
  project.name = identity.projectName;
  const bool forAndroid = identity.applicationId && !identity.bundleIdentifier;
  project.platform = identity.targetPlatform.value_or(forAndroid ? "android" : "iOS");
  project.bundleIdentifier = identity.bundleIdentifier;
  project.applicationId = identity.applicationId;
  project.buildBeforeScheduledRuns = true;
  project.iosBuildConfigured = identity.iosProjectPath && identity.bundleIdentifier;
  project.androidBuildConfigured = identity.androidProjectPath && identity.applicationId;
  workspace.currentProjectName = project.name;
  return workspace.projects.emplace_back(std::move(project));
}

Test& fileTest(Project& project, Test test, const std::optional<std::string>& suite) {
  test.verified = false;
  auto* filed = findByName(project.tests, test.name);
  if (filed) {
    test.id = filed->id;
    test.flakinessScore = filed->flakinessScore;
    test.isFlaky = filed->isFlaky;
    test.lastFailure = filed->lastFailure;
    *filed = std::move(test);
  } else {
    test.id = makeRequestId();
    filed = &project.tests.emplace_back(std::move(test));
  }
  const bool isInSuite =
      std::any_of(project.suites.begin(), project.suites.end(),
                  [filed](const auto& each) { return contains(each.testIds, filed->id); });
  if (suite || !isInSuite) putIntoSuite(project, filed->id, suite.value_or("Agent"));
  return *filed;
}

AgentRunResult::AuthoredTestInfo authoredTest(const Test& test) {
  AgentRunResult::AuthoredTestInfo info;
  info.testId = test.id;
  info.testName = test.name;
  info.stepCount = static_cast<std::int64_t>(test.steps.size());
  return info;
}

std::optional<std::vector<std::string>> parametersOf(const std::vector<Step>& steps) {
  std::vector<std::string> names;
  collectParameters(steps, names);
  if (names.empty()) return std::nullopt;
  return names;
}

void chartPath(std::optional<std::string>& worldMap, const std::string& name,
               const std::vector<Step>& steps) {
  // The paths are the last section, so that a new one goes to the end of the text.
  constexpr std::string_view heading = "Paths explored";
  auto map = worldMap.value_or("");
  if (map.find(heading) == std::string::npos) {
    if (!map.empty()) map += "\n";
    map += heading;
  }
  map += "\n  " + name + ": ";
  for (std::size_t i = 0; i < steps.size(); ++i) {
    map += (i == 0 ? "" : " --> ") + steps[i].description;
  }
  worldMap = std::move(map);
}

}  // namespace corvane::standin
