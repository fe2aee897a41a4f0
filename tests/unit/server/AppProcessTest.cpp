#include "corvane_mcp/app/AppProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <system_error>

#include "tests/support/Pipe.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// What the system says when a bundle cannot be started.
std::error_code startFailure(const fs::path& bundle) {
  try {
    AppProcess::start(bundle);
    return {};
  } catch (const std::system_error& error) {
    return error.code();
  }
}

// The bundles here have a name of their own, so that these programs are not taken for the app.
class AppProcessTest : public ::testing::Test {
 protected:
  TemporaryHome home;
  fs::path bundle = home.path() / "Double.app";
};

TEST_F(AppProcessTest, StartsAProgramThatInheritsNothing) {
  // Descriptors that a careless child would get, one of them far up.
  Pipe pipe;
  ::fcntl(pipe.writing.get(), F_SETFD, 0);
  const FileDescriptor high(::fcntl(pipe.writing.get(), F_DUPFD, 500));
  const auto oldHandler = std::signal(SIGPIPE, SIG_IGN);
  sigset_t blocked;
  sigset_t oldMask;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGTERM);
  ::pthread_sigmask(SIG_BLOCK, &blocked, &oldMask);

  const TemporaryApp app(bundle);
  AppProcess::start(bundle);
  ::pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
  std::signal(SIGPIPE, oldHandler);
  const pid_t process = app.waitUntilUp();

  EXPECT_EQ(ProcessFacts::descriptors(process),
            (std::vector<std::string>{"0 -> /dev/null", "1 -> /dev/null", "2 -> /dev/null"}));
  EXPECT_EQ(ProcessFacts::status(process, "SigBlk"), "0000000000000000");
  EXPECT_EQ(ProcessFacts::status(process, "SigIgn"), "0000000000000000");
  EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(process) + "/cwd"), "/");
}

TEST_F(AppProcessTest, StartsAProgramThatIsNobodysChildAndLeavesNoZombie) {
  const TemporaryApp app(bundle);
  AppProcess::start(bundle);
  const pid_t process = app.waitUntilUp();
  EXPECT_TRUE(ProcessFacts::isAlive(process));
  EXPECT_NE(::getsid(process), ::getsid(0));
  EXPECT_NE(::getpgid(process), ::getpgid(0));
  EXPECT_TRUE(ProcessFacts::children(::getpid()).empty());
}

/// Ignores the ends of this process's children for as long as it lives.
class IgnoredChildren {
 public:
  IgnoredChildren() : before(std::signal(SIGCHLD, SIG_IGN)) {}
  IgnoredChildren(const IgnoredChildren&) = delete;
  IgnoredChildren& operator=(const IgnoredChildren&) = delete;
  ~IgnoredChildren() { std::signal(SIGCHLD, before); }

 private:
  void (*before)(int);
};

// Fails when a status that nobody told is taken for a bad one, or when why it could not be started
// is asked of that status.
TEST_F(AppProcessTest, StartsWhereNoStatusIsTold) {
  const IgnoredChildren ignored;
  EXPECT_EQ(startFailure(bundle), std::errc::no_such_file_or_directory);
  const TemporaryApp app(bundle);
  EXPECT_EQ(startFailure(bundle), std::error_code());
  EXPECT_TRUE(ProcessFacts::isAlive(app.waitUntilUp()));
}

TEST_F(AppProcessTest, StartsAScriptThatSaysHowItIsRun) {
  const fs::path script = bundle / "Contents" / "MacOS" / "Corvane";
  TestFiles::write(script, "#!/bin/sh\necho ran > \"$(dirname \"$0\")/ran\"\n");
  fs::permissions(script, fs::perms::owner_all);
  AppProcess::start(bundle);
  waitUntil("the script has run",
            [&] { return TestFiles::read(script.parent_path() / "ran") == "ran\n"; });
}

TEST_F(AppProcessTest, TellsWhyItCannotStart) {
  EXPECT_EQ(startFailure(bundle), std::errc::no_such_file_or_directory);
  const fs::path program = bundle / "Contents" / "MacOS" / "Corvane";
  TestFiles::write(program, "no program");
  EXPECT_EQ(startFailure(bundle), std::errc::permission_denied);
  fs::permissions(program, fs::perms::owner_all);
  EXPECT_EQ(startFailure(bundle), std::errc::executable_format_error);
  fs::remove(program);
  fs::create_directory(program);
  EXPECT_EQ(startFailure(bundle), std::errc::permission_denied);
  EXPECT_TRUE(ProcessFacts::children(::getpid()).empty());
}

TEST_F(AppProcessTest, KnowsWhatRunsByItsCommandLine) {
  TemporaryApp app(bundle);
  const std::string program = app.program();
  EXPECT_FALSE(AppProcess::isRunning(program));
  app.open();
  EXPECT_TRUE(AppProcess::isRunning(program));
  // A part of the command line is enough.
  EXPECT_TRUE(AppProcess::isRunning(program.substr(5)));
  EXPECT_FALSE(AppProcess::isRunning(program + "x"));
}

TEST_F(AppProcessTest, DoesNotCountAProgramThatHasEnded) {
  std::string program;
  {
    TemporaryApp app(bundle);
    program = app.program();
    app.open();
  }
  EXPECT_FALSE(AppProcess::isRunning(program));
}

TEST_F(AppProcessTest, JoinsArgumentsWithBlanks) {
  const fs::path script = home.path() / "script";
  TestFiles::write(script, "#!/bin/sh\nwhile [ -e \"$0\" ]; do sleep 0.02; done\n");
  fs::permissions(script, fs::perms::owner_all);
  const pid_t child = ::fork();
  if (child == 0) {
    ::execl(script.c_str(), script.c_str(), "one two", "three", nullptr);
    ::_exit(127);
  }
  waitUntil("the command line is there",
            [&] { return AppProcess::isRunning(script.string() + " one two three"); });
  fs::remove(script);
  waitUntil("the script has ended", [&] { return !ProcessFacts::isAlive(child); });
  // Dead, but not waited for yet: such a one does not run.
  EXPECT_FALSE(AppProcess::isRunning(script.string() + " one two three"));
  EXPECT_EQ(::waitpid(child, nullptr, 0), child);
}

}  // namespace
}  // namespace corvane::testing
