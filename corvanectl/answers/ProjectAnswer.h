#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/workspace/AgentContext.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// What an answer of describe_project says.
struct ProjectAnswer {
  struct Summary {
    std::string name;
    std::optional<std::string> platform;
    std::int64_t testCount = 0;
  };

  /// The server's warnings and notes, a line each.
  std::vector<std::string> notes;
  std::optional<std::string> updatedAt;
  std::optional<std::string> appVersion;
  std::optional<std::string> currentProject;
  /// The project that was asked for, else the open one.
  std::optional<AgentContext::ProjectContext> project;
  /// Every project of the workspace, by name.
  std::vector<Summary> projects;
  /// The answer's JSON, as it came.
  AnyCodable::Object snapshot;

  [[nodiscard]] std::vector<std::string> projectNames() const;
};

/// The codes of refusals of describe_project.
inline constexpr std::string_view noWorkspace = "context_unavailable";
inline constexpr std::string_view noSuchProject = "unknown_project";

/// Asks the server about this project, or about the open one. Throws ToolRefusal, ProtocolError and
/// what Session::callTool throws.
[[nodiscard]] ProjectAnswer askProject(Session& session,
                                       const std::optional<std::string>& name = {});

/// Makes sure that the workspace has the project, under exactly this name, and in it the tests and
/// the suite. Throws UsageError that suggests the nearest name. Where no workspace has been
/// published, nothing is checked.
void checkNames(Session& session, const std::string& project, const std::vector<std::string>& tests,
                const std::optional<std::string>& suite);

}  // namespace corvane::ctl
