#include "CorvaneCore/paths/UserFolders.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane::testing {
namespace {

/// Sets or unsets an environment variable and puts back what it was at the end of its life.
class EnvironmentVariable {
 public:
  explicit EnvironmentVariable(const char* name) : name(name) {
    if (const char* value = std::getenv(name)) before = value;
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { set(before ? before->c_str() : nullptr); }

  void set(const char* value) const {
    if (value) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }

 private:
  const char* name;
  std::optional<std::string> before;
};

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
