#include <gtest/gtest.h>

#include <csignal>

#include "corvane_mcp/app/AppProcess.h"

// The seam to macOS, which but for its helpers' names is POSIX, where pgrep lies in the same place.
namespace corvane::testing {
namespace {

TEST(MacAppProcessTest, FindsAProcessByItsCommandLine) {
  EXPECT_TRUE(AppProcess::isRunning("mac_seam_tests"));
  EXPECT_FALSE(AppProcess::isRunning("mac_seam_tests\\.app/Contents/MacOS/nothing"));
}

// Fails when a status that the system did not tell is taken for 0.
TEST(MacAppProcessTest, NothingRunsWhereNoStatusIsTold) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_FALSE(AppProcess::isRunning("mac_seam_tests\\.app/Contents/MacOS/nothing"));
  std::signal(SIGCHLD, before);
}

}  // namespace
}  // namespace corvane::testing
