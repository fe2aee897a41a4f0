#include <gtest/gtest.h>

#include <string>

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/paths/UserFolders.h"
#include "tests/support/EnvironmentVariable.h"

namespace corvane::testing {
namespace {

// Fails when HOME counts, which the app does not ask.
TEST(MacUserFoldersTest, AreThoseOfTheAccount) {
  const EnvironmentVariable home("HOME");
  const EnvironmentVariable fixed("CFFIXED_USER_HOME");
  fixed.set(nullptr);
  home.set("/home/of/nobody");
  const UserFolders folders = UserFolders::current();
  EXPECT_TRUE(folders.home.is_absolute());
  EXPECT_NE(folders.home, "/home/of/nobody");
  EXPECT_EQ(folders.applicationSupport,
            folders.home.native() + std::string("/Library/Application Support"));
}

TEST(MacUserFoldersTest, LieBelowTheHomeThatTheAppIsGivenToo) {
  const EnvironmentVariable fixed("CFFIXED_USER_HOME");
  fixed.set("/Users/me");
  const AgentPaths paths = AgentPaths::current();
  EXPECT_EQ(paths.home(), "/Users/me");
  EXPECT_EQ(paths.applicationSupport(), "/Users/me/Library/Application Support/Corvane");
  EXPECT_EQ(paths.logsDirectory(), "/Users/me/Library/Logs/Corvane");
}

TEST(MacUserFoldersTest, RelativeAndEmptyHomesCountAsUnset) {
  const EnvironmentVariable fixed("CFFIXED_USER_HOME");
  fixed.set(nullptr);
  const UserFolders unset = UserFolders::current();
  for (const char* value : {"", "relative/home", "."}) {
    fixed.set(value);
    EXPECT_EQ(UserFolders::current().home, unset.home);
  }
}

}  // namespace
}  // namespace corvane::testing
