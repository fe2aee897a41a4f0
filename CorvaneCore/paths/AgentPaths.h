#pragma once

#include <filesystem>

#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

/// The one place that names the folders and files shared with Corvane.app. A plain value: nothing
/// is touched on disk except by the ensure… operations.
class AgentPaths {
 public:
  explicit AgentPaths(const UserFolders& folders)
      : userHome(folders.home), support(folders.applicationSupport / "Corvane") {}

  /// The paths of the user who runs this process.
  [[nodiscard]] static AgentPaths current() { return AgentPaths(UserFolders::current()); }

  [[nodiscard]] const std::filesystem::path& home() const { return userHome; }
  [[nodiscard]] const std::filesystem::path& applicationSupport() const { return support; }
  /// Test payload files dropped for the app to import.
  [[nodiscard]] const std::filesystem::path& agentImportsDirectory() const { return imports; }
  /// The drop folder of an older import mechanism; named so that both sides agree.
  [[nodiscard]] std::filesystem::path legacyCursorImportsDirectory() const {
    return support / "CursorImports";
  }
  /// Run, explore and library requests and cancel markers, told apart by suffix.
  [[nodiscard]] const std::filesystem::path& agentRunRequestsDirectory() const {
    return runRequests;
  }
  [[nodiscard]] const std::filesystem::path& agentResultsDirectory() const { return results; }
  [[nodiscard]] const std::filesystem::path& agentMCPDirectory() const { return published; }
  [[nodiscard]] const std::filesystem::path& agentContextFile() const { return context; }
  [[nodiscard]] const std::filesystem::path& agentActivityFile() const { return activity; }
  [[nodiscard]] std::filesystem::path logsDirectory() const { return log.parent_path(); }
  [[nodiscard]] const std::filesystem::path& logFile() const { return log; }

  /// Each makes its folder exist; see ensureDirectoryExists for what happens on failure.
  void ensureAgentImportsDirectoryExists() const;
  void ensureAgentRunRequestsDirectoryExists() const;
  void ensureAgentResultsDirectoryExists() const;
  void ensureAgentMCPDirectoryExists() const;

 private:
  void ensure(const std::filesystem::path& folder) const;

  std::filesystem::path userHome;
  std::filesystem::path support;
  std::filesystem::path imports = support / "AgentImports";
  std::filesystem::path runRequests = support / "AgentRunRequests";
  std::filesystem::path results = support / "AgentResults";
  std::filesystem::path published = support / "AgentMCP";
  std::filesystem::path context = published / "context.json";
  std::filesystem::path activity = published / "activity.json";
  std::filesystem::path log = userHome / "Library" / "Logs" / "Corvane" / "mcp.log";
};

}  // namespace corvane
