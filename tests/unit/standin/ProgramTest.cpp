#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>

#include "CorvaneCore/files/Files.h"
#include "corvane_standin/program/Environment.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

/// The stand-in as a program of its own, in a home whose settings have a misspelt key.
class StandInProgramTest : public ::testing::Test {
 protected:
  StandInProgramTest() {
    TestFiles::write(files.settingsFile(), R"({"stepSecond":1,"coldStartSeconds":0})");
  }
  ~StandInProgramTest() override {
    if (process < 0) return;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
  }

  /// Starts the program with `errors` as its standard error.
  void start(int errors) {
    process = ::fork();
    if (process != 0) return;
    ::setenv("HOME", home.path().c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.path().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    if (errors >= 0) ::dup2(errors, STDERR_FILENO);
    ::execl(CORVANE_STANDIN_PROGRAM, CORVANE_STANDIN_PROGRAM, nullptr);
    ::_exit(127);
  }
  /// The status that the program ends with.
  int wait() {
    int status = 0;
    waitUntil("the program has ended", [&] { return ::waitpid(process, &status, WNOHANG) != 0; });
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  const TemporaryHome home;
  const standin::StandInPaths files{home.programPaths()};

 private:
  pid_t process = -1;
};

// Fails when a person at a terminal is not told, or the program goes on regardless.
TEST_F(StandInProgramTest, WrongSettingsEndItAtATerminal) {
  const FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_EQ(::grantpt(terminal.get()), 0);
  ASSERT_EQ(::unlockpt(terminal.get()), 0);
  const FileDescriptor screen(::open(::ptsname(terminal.get()), O_RDWR | O_NOCTTY));
  start(screen.get());
  EXPECT_EQ(wait(), 2);
  std::array<char, 1024> text{};
  const ssize_t length = ::read(terminal.get(), text.data(), text.size());
  EXPECT_EQ(std::string(text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))),
            "Corvane: settings.json: stepSecond: there is no such setting\r\n");
  EXPECT_FALSE(fileExists(files.lockFile()));
}

// Fails when a server's start of the app ends with the settings.
TEST_F(StandInProgramTest, WrongSettingsAreToldInTheLogElsewhere) {
  const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  start(nowhere.get());
  const std::string line = "] [WARN] settings.json: stepSecond: there is no such setting\n";
  waitUntil("the log tells", [&] {
    return fileExists(files.logFile()) &&
           TestFiles::read(files.logFile()).find(line) != std::string::npos;
  });
  waitUntil("it takes up its work",
            [&] { return fileExists(home.programPaths().agentContextFile()); });
}

}  // namespace
}  // namespace corvane::testing
