#include <gtest/gtest.h>

#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <thread>
#include <utility>

#include "corvane_standin/program/Instance.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"
#include "tests/support/Umask.h"
#include "tests/unit/standin/StandInFixture.h"

#ifdef __linux__
#include <sys/syscall.h>

namespace {

/// The file that vanishes between being opened and being locked.
std::filesystem::path deletedBeforeItIsLocked;

}  // namespace

/// In the place of the system's own.
int flock(int descriptor, int operation) noexcept {
  const auto deleted = std::exchange(deletedBeforeItIsLocked, {});
  if (!deleted.empty()) std::filesystem::remove(deleted);
  return static_cast<int>(::syscall(SYS_flock, descriptor, operation));
}
#endif

namespace corvane::testing {

using namespace standin;

namespace {

using namespace std::chrono_literals;

class InstanceLockTest : public StandInFixture {
 protected:
  const std::filesystem::path file = StandInPaths(paths).lockFile();
};

TEST_F(InstanceLockTest, OnlyTheFirstGetsIt) {
  const auto lock = InstanceLock::tryAcquire(file);
  ASSERT_TRUE(lock);
  EXPECT_FALSE(InstanceLock::tryAcquire(file));
  EXPECT_EQ(readFile(file), std::to_string(::getpid()) + "\n");
}

TEST_F(InstanceLockTest, IsInPlaceAsLongAsItsFileIs) {
  const auto lock = InstanceLock::tryAcquire(file);
  ASSERT_TRUE(lock);
  EXPECT_TRUE(lock->inPlace());
  std::filesystem::remove_all(file.parent_path());
  EXPECT_FALSE(lock->inPlace());
  ensureDirectoryExists(file.parent_path());
  const auto next = InstanceLock::tryAcquire(file);
  ASSERT_TRUE(next);
  EXPECT_FALSE(lock->inPlace()) << "another instance's file stands in the place now";
  EXPECT_TRUE(next->inPlace());
}

// Fails when one of the files is left to the umask.
TEST_F(InstanceLockTest, AnInstancesOwnFilesAreForTheUserAlone) {
  const Umask none(0);
  const auto lock = InstanceLock::tryAcquire(file);
  const StandInLog log(StandInPaths(paths).logFile(), clock);
  EXPECT_EQ(TestFiles::mode(file), 0600U);
  EXPECT_EQ(TestFiles::mode(StandInPaths(paths).logFile()), 0600U);
}

#ifdef __linux__
// Fails when a lock on a file that is gone by then counts.
TEST_F(InstanceLockTest, IsTakenAnewWhenItsFileIsDeletedJustBefore) {
  deletedBeforeItIsLocked = file;
  const auto lock = InstanceLock::tryAcquire(file);
  ASSERT_TRUE(deletedBeforeItIsLocked.empty());
  ASSERT_TRUE(lock);
  EXPECT_TRUE(lock->inPlace());
}
#endif

TEST_F(InstanceLockTest, AFileThatCannotBeMadeIsAnError) {
  EXPECT_THROW((void)InstanceLock::tryAcquire(file / "below"), FileError);
}

TEST_F(InstanceLockTest, QuittingNobodySucceeds) {
  EXPECT_TRUE(quitInstance(file, 0s));
  writeFileWhole(file, std::to_string(::getpid()));
  EXPECT_TRUE(quitInstance(file, 0s)) << "the id of a process that died long ago means nothing";
}

TEST_F(InstanceLockTest, QuittingWaitsUntilTheInstanceIsGone) {
  const pid_t child = ::fork();
  if (child == 0) {
    const auto lock = InstanceLock::tryAcquire(file);
    while (true) ::pause();
  }
  waitUntil("the instance has the lock",
            [&] { return fileExists(file) && !readFile(file).empty(); });
  EXPECT_TRUE(quitInstance(file, 30s));
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
}

/// In a process of its own, as signals held back stay so for the rest of its life.
TEST(StopSignalsDeathTest, SignalsAreSeenAndDoNotEndTheProcess) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EXIT(
        {
          const StopSignals stop;
          if (stop.arrived()) std::_Exit(1);
          std::raise(signal);
          std::_Exit(stop.arrived() ? 0 : 2);
        },
        ::testing::ExitedWithCode(0), "")
        << signal;
  }
}

}  // namespace
}  // namespace corvane::testing
