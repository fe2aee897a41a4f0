#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/Settings.h"
#include "corvane_standin/program/Environment.h"
#include "corvane_standin/program/Ids.h"

namespace corvane::standin {

/// A request that cannot be fulfilled as it stands; the description is for the agent.
class RequestRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  /// `code` tells the agent which action is needed.
  RequestRefused(const std::string& description, std::string code)
      : std::runtime_error(description), code(std::move(code)) {}

  /// Present when the request is blocked, absent when it is in error.
  std::optional<std::string> code;
};

[[nodiscard]] inline std::string inQuotes(const std::string& name) {
  return "'" + name + "'";
}

/// "Tests: 'A', 'B'.", so that whoever named another can see what there is.
template <class Named>
[[nodiscard]] std::string listing(const std::string& title, const std::vector<Named>& items) {
  std::string list;
  for (const auto& item : items) list += (list.empty() ? "" : ", ") + inQuotes(item.name);
  return title + ": " + (list.empty() ? "none" : list) + ".";
}

/// The first of `items` with that exact name, or nullptr.
template <class Items>
[[nodiscard]] auto* findByName(Items& items, const std::string& name) {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&name](const auto& item) { return item.name == name; });
  return found == items.end() ? nullptr : &*found;
}

/// The first of `items` with that id, or nullptr.
template <class Items>
[[nodiscard]] auto* findById(Items& items, const std::string& id) {
  const auto found =
      std::find_if(items.begin(), items.end(), [&id](const auto& item) { return item.id == id; });
  return found == items.end() ? nullptr : &*found;
}

/// The project of that exact name. Throws RequestRefused, which lists those there are.
template <class Context>
[[nodiscard]] auto& requireProject(Context& workspace, const std::string& name) {
  if (auto* project = findByName(workspace.projects, name)) return *project;
  throw RequestRefused("There is no project named " + inQuotes(name) + ". " +
                       listing("Projects", workspace.projects));
}

/// The test of that exact name. Throws RequestRefused, which lists those there are.
template <class Project>
[[nodiscard]] auto& requireTest(Project& project, const std::string& name) {
  if (auto* test = findByName(project.tests, name)) return *test;
  throw RequestRefused("The project " + inQuotes(project.name) + " has no test named " +
                       inQuotes(name) + ". " + listing("Tests", project.tests));
}

/// The platform to work on, in the spelling that results carry: the one asked for, else the
/// project's. Throws RequestRefused for one that does not exist.
[[nodiscard]] std::string platformFor(const std::optional<std::string>& asked,
                                      const AgentContext::ProjectContext& project);

/// The project's app for a platform that platformFor gave. Throws RequestRefused, as blocked, when
/// it has none.
[[nodiscard]] AgentRunResult::AppIdentity appFor(const std::string& platform,
                                                 const AgentContext::ProjectContext& project);

/// The workspace that a home without one begins with. Not dated yet.
[[nodiscard]] AgentContext firstWorkspace();

/// How the tests of that workspace turn out unless settings say otherwise; tests not named pass.
[[nodiscard]] std::map<std::string, TestOutcome> firstOutcomes();

/// The app that carries `bundleId`, with the version it has in that workspace when it is one of its
/// apps.
[[nodiscard]] AgentRunResult::AppIdentity installedApp(const std::string& bundleId);

/// What a request says about the app that a new project is for. Members are named as in requests.
struct ProjectIdentity {
  std::string projectName;
  std::optional<std::string> targetPlatform;
  std::optional<std::string> iosProjectPath;
  std::optional<std::string> bundleIdentifier;
  std::optional<std::string> androidProjectPath;
  std::optional<std::string> applicationId;

  template <class Request>
  [[nodiscard]] static ProjectIdentity of(const Request& request) {
    return {request.projectName,      request.targetPlatform,     request.iosProjectPath,
            request.bundleIdentifier, request.androidProjectPath, request.applicationId};
  }
};

/// Adds an empty project that builds before its runs, opens it and returns it.
AgentContext::ProjectContext& addProject(AgentContext& workspace, const ProjectIdentity& identity);

/// Puts `test` into the project, in the place of a test of the same name, whose id and history it
/// then takes over; nobody has seen it pass yet. A test that is in no suite, or for which `suite`
/// is named, goes into that one, "Agent" unless named.
AgentContext::TestContext& fileTest(AgentContext::ProjectContext& project,
                                    AgentContext::TestContext test,
                                    const std::optional<std::string>& suite, const Ids& ids);

/// What a result says about a test that a request brought in.
[[nodiscard]] AgentRunResult::AuthoredTestInfo authoredTest(const AgentContext::TestContext& test);

/// The names of the "$name" placeholders in the steps, children included, each once, in the order
/// in which they first appear; nothing when there are none.
[[nodiscard]] std::optional<std::vector<std::string>> parametersOf(
    const std::vector<AgentContext::StepSummary>& steps);

/// The charted paths of a world map with one more at the end. `worldMap` may be absent.
void chartPath(std::optional<std::string>& worldMap, const std::string& name,
               const std::vector<AgentContext::StepSummary>& steps);

/// The workspace, which lives in the published context file from one start to the next.
class WorkspaceStore {
 public:
  /// Takes up the workspace in the context file, or `first` when there is no usable file.
  WorkspaceStore(const AgentPaths& paths, const Clock& clock, const StandInLog& log,
                 AgentContext first);

  [[nodiscard]] const AgentContext& workspace() const { return context; }

  /// Changes the workspace and publishes it again. What `change` throws leaves it as it was.
  void update(const std::function<void(AgentContext&)>& change);

  /// Notes how a test that ran to its end turned out, and publishes again.
  void record(const std::string& projectName, const AgentRunResult::Test& outcome);

  /// Dates the workspace now and writes the context file. A failure is logged.
  void publish();

 private:
  void load(AgentContext first);
  void publishAgain();

  const AgentPaths& paths;
  const Clock& clock;
  const StandInLog& log;
  AgentContext context;
  /// By test id, for tests that ran in this life: whether the last run failed.
  std::map<std::string, bool> lastRunFailed;
};

}  // namespace corvane::standin
