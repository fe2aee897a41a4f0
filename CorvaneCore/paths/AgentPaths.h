#pragma once

#include <filesystem>

#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

/// The one place that names the folders and files shared with Corvane.app. A plain value: every
/// member is computed, nothing is touched on disk except by the ensure… operations.
class AgentPaths {
 public:
  explicit AgentPaths(UserFolders folders) : folders(std::move(folders)) {}

  /// The paths of the user who runs this process.
  [[nodiscard]] static AgentPaths current() { return AgentPaths(UserFolders::current()); }

  [[nodiscard]] const std::filesystem::path& home() const { return folders.home; }
  [[nodiscard]] std::filesystem::path applicationSupport() const {
    return folders.applicationSupport / "Corvane";
  }
  /// Test payload files dropped for the app to import.
  [[nodiscard]] std::filesystem::path agentImportsDirectory() const {
    return applicationSupport() / "AgentImports";
  }
  /// The drop folder of an older import mechanism; named so that both sides agree.
  [[nodiscard]] std::filesystem::path legacyCursorImportsDirectory() const {
    return applicationSupport() / "CursorImports";
  }
  /// Run, explore and library requests and cancel markers, told apart by suffix.
  [[nodiscard]] std::filesystem::path agentRunRequestsDirectory() const {
    return applicationSupport() / "AgentRunRequests";
  }
  [[nodiscard]] std::filesystem::path agentResultsDirectory() const {
    return applicationSupport() / "AgentResults";
  }
  [[nodiscard]] std::filesystem::path agentMCPDirectory() const {
    return applicationSupport() / "AgentMCP";
  }
  [[nodiscard]] std::filesystem::path agentContextFile() const {
    return agentMCPDirectory() / "context.json";
  }
  [[nodiscard]] std::filesystem::path agentActivityFile() const {
    return agentMCPDirectory() / "activity.json";
  }
  [[nodiscard]] std::filesystem::path logsDirectory() const {
    return folders.home / "Library" / "Logs" / "Corvane";
  }
  [[nodiscard]] std::filesystem::path logFile() const { return logsDirectory() / "mcp.log"; }

  /// Each makes its folder exist; see ensureDirectoryExists for what happens on failure.
  void ensureAgentImportsDirectoryExists() const;
  void ensureAgentRunRequestsDirectoryExists() const;
  void ensureAgentResultsDirectoryExists() const;
  void ensureAgentMCPDirectoryExists() const;

 private:
  void ensure(const std::filesystem::path& folder) const;

  UserFolders folders;
};

}  // namespace corvane
