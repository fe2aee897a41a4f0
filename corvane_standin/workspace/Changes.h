#pragma once

#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

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
                                    const std::optional<std::string>& suite);

/// What a result says about a test that a request brought in.
[[nodiscard]] AgentRunResult::AuthoredTestInfo authoredTest(const AgentContext::TestContext& test);

/// The names of the "$name" placeholders in the steps, children included, each once, in the order
/// in which they first appear; nothing when there are none.
[[nodiscard]] std::optional<std::vector<std::string>> parametersOf(
    const std::vector<AgentContext::StepSummary>& steps);

/// The charted paths of a world map with one more at the end. `worldMap` may be absent.
void chartPath(std::optional<std::string>& worldMap, const std::string& name,
               const std::vector<AgentContext::StepSummary>& steps);

}  // namespace corvane::standin
