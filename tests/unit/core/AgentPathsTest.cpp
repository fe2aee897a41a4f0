#include "CorvaneCore/paths/AgentPaths.h"

#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {
namespace {

TEST(AgentPathsTest, NamesEveryFolderAndFile) {
  const AgentPaths paths(UserFolders{.applicationSupport = "/home/me/Library/Application Support",
                                     .home = "/home/me"});
  EXPECT_EQ(paths.home(), "/home/me");
  EXPECT_EQ(paths.applicationSupport(), "/home/me/Library/Application Support/Corvane");
  EXPECT_EQ(paths.agentImportsDirectory(),
            "/home/me/Library/Application Support/Corvane/AgentImports");
  EXPECT_EQ(paths.legacyCursorImportsDirectory(),
            "/home/me/Library/Application Support/Corvane/CursorImports");
  EXPECT_EQ(paths.agentRunRequestsDirectory(),
            "/home/me/Library/Application Support/Corvane/AgentRunRequests");
  EXPECT_EQ(paths.agentResultsDirectory(),
            "/home/me/Library/Application Support/Corvane/AgentResults");
  EXPECT_EQ(paths.agentMCPDirectory(), "/home/me/Library/Application Support/Corvane/AgentMCP");
  EXPECT_EQ(paths.agentContextFile(),
            "/home/me/Library/Application Support/Corvane/AgentMCP/context.json");
  EXPECT_EQ(paths.agentActivityFile(),
            "/home/me/Library/Application Support/Corvane/AgentMCP/activity.json");
  EXPECT_EQ(paths.logsDirectory(), "/home/me/Library/Logs/Corvane");
  EXPECT_EQ(paths.logFile(), "/home/me/Library/Logs/Corvane/mcp.log");
}

TEST(AgentPathsTest, NamingTouchesNothing) {
  const TemporaryHome home;
  (void)home.paths().agentContextFile();
  (void)home.paths().logFile();
  EXPECT_EQ(home.entries(), std::vector<std::string>());
}

TEST(AgentPathsTest, EachEnsureMakesItsOwnFolderOnly) {
  const std::string root = ".local/share/Corvane";
  const auto expectOnly = [&](void (AgentPaths::*ensure)() const, const std::string& folder) {
    const TemporaryHome home;
    (home.paths().*ensure)();
    const std::vector<std::string> expected{".local", ".local/share", root, root + "/" + folder};
    EXPECT_EQ(home.entries(), expected);
    (home.paths().*ensure)();
    EXPECT_EQ(home.entries(), expected);
  };
  expectOnly(&AgentPaths::ensureAgentImportsDirectoryExists, "AgentImports");
  expectOnly(&AgentPaths::ensureAgentRunRequestsDirectoryExists, "AgentRunRequests");
  expectOnly(&AgentPaths::ensureAgentResultsDirectoryExists, "AgentResults");
  expectOnly(&AgentPaths::ensureAgentMCPDirectoryExists, "AgentMCP");
}

TEST(AgentPathsTest, EnsureLeavesAFileInTheFoldersPlaceAlone) {
  const TemporaryHome home;
  writeFileWhole(home.paths().agentImportsDirectory(), "kept");
  home.paths().ensureAgentImportsDirectoryExists();
  EXPECT_EQ(readFile(home.paths().agentImportsDirectory()), "kept");
}

TEST(AgentPathsTest, EnsureKeepsWhatAFolderHolds) {
  const TemporaryHome home;
  writeFileWhole(home.paths().agentResultsDirectory() / "a.json", "{}");
  home.paths().ensureAgentResultsDirectoryExists();
  EXPECT_EQ(readFile(home.paths().agentResultsDirectory() / "a.json"), "{}");
}

TEST(AgentPathsTest, EnsureIgnoresThatItCannotCreate) {
  const TemporaryHome home;
  writeFileWhole(home.path() / ".local", "a file in a parent's place");
  home.paths().ensureAgentRunRequestsDirectoryExists();
  EXPECT_EQ(home.entries(), std::vector<std::string>{".local"});
}

}  // namespace
}  // namespace corvane::testing
