#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "corvane_mcp/app/AppProcess_macos.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

// The seam to macOS, which but for its helpers is POSIX: with the pgrep of this system, which lies
// in the same place, and with scripts that play pgrep and open.
namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

class MacAppProcessTest : public ::testing::Test {
 protected:
  /// A helper that is a script; it lies in home, and `$here` names that.
  fs::path script(const std::string& text) {
    const fs::path file = home.path() / "helper";
    TestFiles::write(file, "#!/bin/sh\nhere=" + home.path().string() + "\n" + text);
    fs::permissions(file, fs::perms::owner_all);
    return file;
  }
  /// What isRunning makes of a pgrep that behaves so.
  bool runsBy(const std::string& pgrep) {
    return AppProcess::isRunning("Double.app", {.pgrep = script(pgrep), .open = {}});
  }
  /// Starts the bundle with an open that behaves so.
  void startBy(const std::string& open) {
    AppProcess::start(bundle, {.pgrep = {}, .open = script(open)});
  }
  std::string textIn(const char* name) const { return TestFiles::read(home.path() / name); }
  void waitForFile(const char* name) const {
    waitUntil(name, [&] { return fs::exists(home.path() / name); });
  }

  TemporaryHome home;
  fs::path bundle = home.path() / "My Applications" / "Double.app";
};

/// A process with arguments of its own, for as long as this lives.
class Sleeper {
 public:
  explicit Sleeper(const std::string& argument) : process(::fork()) {
    if (process == 0) {
      ::execl("/bin/sh", "sh", "-c", "while :; do sleep 1; done", "sh", argument.c_str(), nullptr);
      ::_exit(127);
    }
  }
  Sleeper(const Sleeper&) = delete;
  Sleeper& operator=(const Sleeper&) = delete;
  ~Sleeper() {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
  }

 private:
  pid_t process;
};

// --- Is it running?

// Fails when only the program's name is matched.
TEST_F(MacAppProcessTest, FindsAProcessByAnyPartOfItsCommandLine) {
  const std::string argument = home.path() / "Double.app" / "Contents";
  const Sleeper sleeper("--open=" + argument + "/MacOS/Double --quietly");
  waitUntil("the process is seen", [&] { return AppProcess::isRunning(argument); });
  EXPECT_TRUE(AppProcess::isRunning(argument + "/MacOS/Double --quietly"));
  EXPECT_FALSE(AppProcess::isRunning(argument + "/MacOS/Triple"));
}

// The helper has the text in its own command line.
TEST_F(MacAppProcessTest, DoesNotFindTheHelperItself) {
  EXPECT_FALSE(AppProcess::isRunning(home.path().string() + "/nothing"));
}

TEST_F(MacAppProcessTest, IsNotMisledByProcessesThatComeAndGo) {
  std::atomic<bool> done = false;
  std::thread others([&done] {
    while (!done) {
      const pid_t child = ::fork();
      if (child == 0) {
        ::execl("/bin/true", "true", "something", nullptr);
        ::_exit(127);
      }
      ::waitpid(child, nullptr, 0);
    }
  });
  const std::string argument = home.path() / "Double.app";
  const Sleeper sleeper(argument);
  waitUntil("the process is seen", [&] { return AppProcess::isRunning(argument); });
  constexpr int looks = 20;
  for (int i = 0; i < looks; ++i) {
    EXPECT_TRUE(AppProcess::isRunning(argument));
    EXPECT_FALSE(AppProcess::isRunning(argument + "/nothing"));
  }
  done = true;
  others.join();
}

TEST_F(MacAppProcessTest, AsksForAMatchOnTheFullCommandLine) {
  EXPECT_TRUE(runsBy(R"(printf '%s|' "$@" > "$here/arguments")"));
  EXPECT_EQ(textIn("arguments"), "-f|Double.app|");
}

// Fails when any other status than 0 counts as running.
TEST_F(MacAppProcessTest, RunsOnlyWhenTheHelperSaysSo) {
  EXPECT_TRUE(runsBy("exit 0"));
  for (const char* status : {"1", "2", "3", "127"}) {
    EXPECT_FALSE(runsBy(std::string("exit ") + status)) << status;
  }
  EXPECT_FALSE(runsBy("kill -KILL $$"));
}

// Fails when what it says goes to a pipe that nobody reads.
TEST_F(MacAppProcessTest, WhatTheHelperPrintsIsDropped) {
  EXPECT_TRUE(runsBy("head -c 300000 /dev/zero; head -c 300000 /dev/zero >&2"));
}

TEST_F(MacAppProcessTest, NothingRunsWhereTheHelperIsMissing) {
  EXPECT_FALSE(AppProcess::isRunning("sh", {.pgrep = home.path() / "none", .open = {}}));
}

// Fails when a status that the system did not tell is taken for 0.
TEST_F(MacAppProcessTest, NothingRunsWhereNoStatusIsTold) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  EXPECT_FALSE(AppProcess::isRunning(home.path().string() + "/nothing"));
  ::signal(SIGCHLD, before);
}

// --- Starting it

TEST_F(MacAppProcessTest, HandsTheBundleToOpenAndNothingElse) {
  startBy(R"(printf '%s|' "$@" > "$here/new"; mv "$here/new" "$here/arguments")");
  waitForFile("arguments");
  EXPECT_EQ(textIn("arguments"), bundle.string() + "|");
}

// Fails when it is waited for: it ends only after start has returned.
TEST_F(MacAppProcessTest, DoesNotWaitForOpen) {
  startBy(R"(until [ -e "$here/returned" ]; do sleep 0.01; done; touch "$here/ended")");
  EXPECT_FALSE(fs::exists(home.path() / "ended"));
  TestFiles::write(home.path() / "returned", "");
  waitForFile("ended");
}

TEST_F(MacAppProcessTest, LeavesNoZombie) {
  startBy("exit 0");
  waitUntil("the helper is reaped", [] { return ProcessFacts::children(::getpid()).empty(); });
}

TEST_F(MacAppProcessTest, HowOpenEndsIsNotItsAffair) {
  EXPECT_NO_THROW(startBy("exit 1"));
}

// Fails when the helper gets a stream of the server's, or signals that the server ignores or
// blocks.
TEST_F(MacAppProcessTest, GivesOpenNothingOfItsOwn) {
  const auto helper = [] { return ProcessFacts::withCommandLine({"sleep 60.25"}); };
  const auto oldHandler = ::signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigset_t oldMask;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &oldMask);
  startBy("exec sleep 60.25");
  ::pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
  ::signal(SIGPIPE, oldHandler);
  waitUntil("open runs", [&] { return !helper().empty(); });
  const pid_t open = helper().front();
  auto streams = ProcessFacts::descriptors(open);
  // The others are closed by a flag that only macOS has.
  streams.resize(3);
  EXPECT_EQ(streams,
            (std::vector<std::string>{"0 -> /dev/null", "1 -> /dev/null", "2 -> /dev/null"}));
  EXPECT_EQ(ProcessFacts::status(open, "SigBlk"), "0000000000000000");
  // But for two signals that this system's library keeps for itself.
  EXPECT_EQ(ProcessFacts::status(open, "SigIgn"), "0000000180000000");
  ::kill(open, SIGKILL);
}

TEST_F(MacAppProcessTest, TellsWhyOpenCannotBeStarted) {
  const auto failure = [&](const fs::path& open) {
    try {
      AppProcess::start(bundle, {.pgrep = {}, .open = open});
      return std::error_code();
    } catch (const std::system_error& error) {
      return error.code();
    }
  };
  EXPECT_EQ(failure(home.path() / "none"), std::errc::no_such_file_or_directory);
  TestFiles::write(home.path() / "text", "no program");
  EXPECT_EQ(failure(home.path() / "text"), std::errc::permission_denied);
}

}  // namespace
}  // namespace corvane::testing
