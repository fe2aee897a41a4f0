#include <gtest/gtest.h>

#include <string>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/paths/UserFolders.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

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

// Fails when only the folder itself is closed, or what lies above the shared one as well.
TEST(AgentPathsTest, EnsureClosesTheSharedFolderToOthers) {
  const TemporaryHome home;
  const auto shared = home.paths().applicationSupport();
  const auto results = home.paths().agentResultsDirectory();
  std::filesystem::create_directories(results);
  for (const auto& folder : {shared.parent_path(), shared, results}) {
    TestFiles::setMode(folder, 0755);
  }
  home.paths().ensureAgentImportsDirectoryExists();
  EXPECT_EQ(TestFiles::mode(shared), 0700U);
  EXPECT_EQ(TestFiles::mode(results), 0700U);
  EXPECT_EQ(TestFiles::mode(home.paths().agentImportsDirectory()), 0700U);
  EXPECT_EQ(TestFiles::mode(shared.parent_path()), 0755U);
}

TEST(UserFoldersTest, AreAbsolute) {
  const UserFolders folders = UserFolders::current();
  EXPECT_TRUE(folders.home.is_absolute());
  EXPECT_TRUE(folders.applicationSupport.is_absolute());
}

#ifndef __APPLE__
TEST(UserFoldersTest, FollowTheEnvironment) {
  const EnvironmentVariable home("HOME");
  const EnvironmentVariable data("XDG_DATA_HOME");
  home.set("/home/me");
  data.set(nullptr);
  EXPECT_EQ(UserFolders::current().home, "/home/me");
  EXPECT_EQ(UserFolders::current().applicationSupport, "/home/me/.local/share");
  EXPECT_EQ(AgentPaths::current().agentContextFile(),
            "/home/me/.local/share/Corvane/AgentMCP/context.json");
  EXPECT_EQ(AgentPaths::current().logFile(), "/home/me/Library/Logs/Corvane/mcp.log");
  data.set("/data/me");
  EXPECT_EQ(UserFolders::current().home, "/home/me");
  EXPECT_EQ(UserFolders::current().applicationSupport, "/data/me");
}

TEST(UserFoldersTest, RelativeAndEmptyVariablesCountAsUnset) {
  const EnvironmentVariable home("HOME");
  const EnvironmentVariable data("XDG_DATA_HOME");
  data.set(nullptr);
  home.set(nullptr);
  const UserFolders unset = UserFolders::current();
  EXPECT_TRUE(unset.home.is_absolute());
  for (const char* value : {"", "relative/home", "."}) {
    home.set(value);
    EXPECT_EQ(UserFolders::current().home, unset.home);
    data.set(value);
    EXPECT_EQ(UserFolders::current().applicationSupport, unset.home / ".local/share");
  }
}
#endif

}  // namespace
}  // namespace corvane::testing
