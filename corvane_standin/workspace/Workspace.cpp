#include "corvane_standin/workspace/Workspace.h"

#include <algorithm>
#include <cmath>
#include <system_error>
#include <utility>

#include "CorvaneCore/authoring/Vocabularies.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

constexpr std::string_view iOS = rawValue(AgentTargetPlatform::iOS);
constexpr std::string_view android = rawValue(AgentTargetPlatform::android);

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

/// How often the last runs alternated between passing and failing, recent ones counting most.
double flakinessAfter(double before, bool alternated) {
  constexpr double weightOfLastRun = 0.25;
  const double after = before + weightOfLastRun * ((alternated ? 1.0 : 0.0) - before);
  return std::round(after * 100) / 100;
}

}  // namespace

std::string platformFor(const std::optional<std::string>& asked,
                        const AgentContext::ProjectContext& project) {
  const std::string wanted = asked ? *asked : project.platform.value_or(std::string(iOS));
  std::string platforms;
  for (const auto& row : vocabularyRows<AgentTargetPlatform>()) {
    if (asciiLowercase(row.rawValue) == asciiLowercase(wanted)) return std::string(row.rawValue);
    platforms.append(platforms.empty() ? "" : ", ").append(inQuotes(std::string(row.rawValue)));
  }
  throw RequestRefused("There is no platform named " + inQuotes(wanted) +
                       ". Platforms: " + platforms + ".");
}

AgentRunResult::AppIdentity appFor(const std::string& platform,
                                   const AgentContext::ProjectContext& project) {
  const auto& bundle = platform == iOS ? project.bundleIdentifier : project.applicationId;
  if (bundle) return installedApp(*bundle);
  throw RequestRefused(
      "The project " + inQuotes(project.name) + " has no app for " + platform + ".",
      "platformNotConfigured");
}

Project& addProject(AgentContext& workspace, const ProjectIdentity& identity) {
  Project project;
  project.name = identity.projectName;
  const bool forAndroid = identity.applicationId && !identity.bundleIdentifier;
  project.platform = identity.targetPlatform.value_or(std::string(forAndroid ? android : iOS));
  project.bundleIdentifier = identity.bundleIdentifier;
  project.applicationId = identity.applicationId;
  project.buildBeforeScheduledRuns = true;
  project.iosBuildConfigured = identity.iosProjectPath && identity.bundleIdentifier;
  project.androidBuildConfigured = identity.androidProjectPath && identity.applicationId;
  workspace.currentProjectName = project.name;
  return workspace.projects.emplace_back(std::move(project));
}

Test& fileTest(Project& project, Test test, const std::optional<std::string>& suite,
               const Ids& ids) {
  test.verified = false;
  auto* filed = findByName(project.tests, test.name);
  if (filed) {
    test.id = filed->id;
    test.flakinessScore = filed->flakinessScore;
    test.isFlaky = filed->isFlaky;
    test.lastFailure = filed->lastFailure;
    *filed = std::move(test);
  } else {
    test.id = ids.make("test", project.name, test.name);
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

WorkspaceStore::WorkspaceStore(const AgentPaths& paths, const Clock& clock, const StandInLog& log,
                               AgentContext first)
    : paths(paths), clock(clock), log(log) {
  load(std::move(first));
}

void WorkspaceStore::load(AgentContext first) {
  const auto file = paths.agentContextFile();
  try {
    context = fileExists(file) ? AgentContext::read(file) : first;
  } catch (const std::runtime_error& error) {
    const auto aside = StandInPaths(paths).unreadableContextFile();
    log.warn("the workspace in context.json is set aside as " + displayPath(aside) + ": " +
             error.what());
    std::error_code ignored;
    std::filesystem::rename(file, aside, ignored);
    context = std::move(first);
  }
}

void WorkspaceStore::record(const std::string& projectName, const AgentRunResult::Test& outcome) {
  auto* project = findByName(context.projects, projectName);
  auto* test = project ? findById(project->tests, outcome.testId) : nullptr;
  if (!test) return;
  const bool failed = outcome.status == "failed";
  // A first run alternates with none: it is compared with itself.
  const auto last = lastRunFailed.try_emplace(outcome.testId, failed).first;
  test->flakinessScore = flakinessAfter(test->flakinessScore.value_or(0), last->second != failed);
  constexpr double flakyFrom = 0.3;
  test->isFlaky = *test->flakinessScore >= flakyFrom;
  last->second = failed;
  if (outcome.status == "passed") test->verified = true;
  if (failed) {
    const auto step = std::find_if(outcome.steps.begin(), outcome.steps.end(),
                                   [](const auto& each) { return each.status == "failed"; });
    if (step != outcome.steps.end()) {
      test->lastFailure = AgentContext::LastFailure{step->title, step->failureReason};
    }
  }
  publishAgain();
}

void WorkspaceStore::update(const std::function<void(AgentContext&)>& change) {
  AgentContext changed = context;
  change(changed);
  context = std::move(changed);
  publishAgain();
}

void WorkspaceStore::publishAgain() {
  // A file that was taken away stays so: its home is being deleted.
  if (fileExists(paths.agentContextFile())) publish();
}

void WorkspaceStore::publish() {
  context.updatedAt = clock.date();
  try {
    context.write(paths);
  } catch (const std::runtime_error& error) {
    log.warn(std::string("the workspace was not published: ") + error.what());
  }
}

}  // namespace corvane::standin
