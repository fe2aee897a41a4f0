#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvane_standin/program/Environment.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

/// The stand-in as a program of its own.
class StandInProgramTest : public ::testing::Test {
 protected:
  ~StandInProgramTest() override {
    if (process < 0) return;
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
  }

  /// Starts the program with `errors` as its standard error.
  void start(int errors, std::vector<std::string> arguments = {}) {
    std::vector<char*> words{const_cast<char*>(CORVANE_STANDIN_PROGRAM)};
    for (auto& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    process = ::fork();
    if (process != 0) return;
    ::setenv("HOME", home.path().c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.path().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    if (errors >= 0) ::dup2(errors, STDERR_FILENO);
    ::execv(CORVANE_STANDIN_PROGRAM, words.data());
    ::_exit(127);
  }
  /// The status that the program ends with.
  int wait() {
    int status = 0;
    waitUntil("the program has ended", [&] { return ::waitpid(process, &status, WNOHANG) != 0; });
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  /// Starts the program with a file as its standard error, waits for its end and gives what it
  /// said.
  std::string complaintsOf(std::vector<std::string> arguments, int expectedStatus) {
    const auto file = home.path() / "errors";
    const FileDescriptor errors(
        ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    start(errors.get(), std::move(arguments));
    EXPECT_EQ(wait(), expectedStatus);
    return TestFiles::read(file);
  }

  const TemporaryHome home;
  const standin::StandInPaths files{home.programPaths()};
  pid_t process = -1;
};

/// In a home whose settings have a misspelt key.
class WrongSettingsTest : public StandInProgramTest {
 protected:
  WrongSettingsTest() {
    TestFiles::write(files.settingsFile(), R"({"stepSecond":1,"coldStartSeconds":0})");
  }
};

// Fails when a person at a terminal is not told, or the program goes on regardless.
TEST_F(WrongSettingsTest, EndItAtATerminal) {
  const FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY));
  ASSERT_EQ(::grantpt(terminal.get()), 0);
  ASSERT_EQ(::unlockpt(terminal.get()), 0);
  const FileDescriptor screen(::open(::ptsname(terminal.get()), O_RDWR | O_NOCTTY));
  start(screen.get());
  EXPECT_EQ(wait(), 2);
  std::array<char, 1024> text{};
  const ssize_t length = ::read(terminal.get(), text.data(), text.size());
  EXPECT_EQ(
      std::string(text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))),
      "Corvane: settings.json: line 1, column 2: stepSecond: there is no such setting. Did you "
      "mean 'stepSeconds'?\r\n");
  EXPECT_FALSE(fileExists(files.lockFile()));
}

// Fails when a server's start of the app ends with the settings.
TEST_F(WrongSettingsTest, AreToldInTheLogElsewhere) {
  const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
  start(nowhere.get());
  const std::string line =
      "] [WARN] settings.json: line 1, column 2: stepSecond: there is no such setting. Did you "
      "mean "
      "'stepSeconds'?\n";
  waitUntil("the log tells", [&] {
    return fileExists(files.logFile()) &&
           TestFiles::read(files.logFile()).find(line) != std::string::npos;
  });
  waitUntil("it takes up its work",
            [&] { return fileExists(home.programPaths().agentContextFile()); });
}

// Fails when a scenario with mistakes is acted all the same, or the home's settings are read too.
TEST_F(WrongSettingsTest, AreNotReadBesideAScenario) {
  const auto scenario = (home.path() / "bench.json").string();
  TestFiles::write(scenario, "{\"outcomes\":\n{\"A\":{\"outcome\":\"fail\"}},\n\"clocks\":1}");
  EXPECT_EQ(complaintsOf({"--scenario", scenario}, 2),
            "Corvane: " + scenario +
                ": line 2, column 17: outcomes.A.outcome: expected one of passed, failed, healed, "
                "blocked, warning, buildFailed, wedged, hang, hold, crash. Did you mean "
                "'failed'?\nCorvane: " +
                scenario +
                ": line 3, column 1: clocks: there is no such setting. Did you mean 'clock'?\n");
  EXPECT_FALSE(fileExists(files.lockFile()));
}

TEST_F(StandInProgramTest, AScenarioThatIsNotThereEndsIt) {
  const auto scenario = (home.path() / "none.json").string();
  EXPECT_EQ(complaintsOf({"--scenario", scenario}, 2),
            "Corvane: could not read " + scenario + ": No such file or directory\n");
}

// Fails when the folder that the program was started in becomes the home.
TEST_F(StandInProgramTest, AnEmptyNameEndsIt) {
  constexpr int refusedOption = 105;
  EXPECT_EQ(complaintsOf({"--home", ""}, refusedOption),
            "--home: expected the name of a folder, not ''\n"
            "Run with --help for more information.\n");
  EXPECT_EQ(complaintsOf({"--scenario", ""}, refusedOption),
            "--scenario: expected the name of a file, not ''\n"
            "Run with --help for more information.\n");
}

TEST_F(StandInProgramTest, ANameThatIsNearlyRightIsOnlyHintedAt) {
  const auto scenario = (home.path() / "bench.json").string();
  TestFiles::write(scenario, R"({"outcomes":{"Sing in":{"outcome":"failed"}}})");
  const auto file = home.path() / "errors";
  const FileDescriptor errors(::open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  start(errors.get(), {"--scenario", scenario, "--cold-start-seconds", "0"});
  waitUntil("it takes up its work",
            [&] { return fileExists(home.programPaths().agentContextFile()); });
  EXPECT_EQ(TestFiles::read(file),
            "Corvane: " + scenario +
                ": line 1, column 14: outcomes.Sing in: nothing in the workspace is called so. Did "
                "you mean 'Sign in'?\n");
}

/// The program with a scenario that leaves nothing to the machine.
class RepeatableTest : public StandInProgramTest {
 protected:
  /// What the shared files and the pictures hold, by their names, after a run and an exploration in
  /// a home of their own.
  std::map<std::string, std::string> filesAfterRequests() {
    const TemporaryHome bench;
    const auto paths = bench.programPaths();
    const auto scenario = (home.path() / "bench.json").string();
    TestFiles::write(scenario, R"({"stepSeconds":0.03,"buildSeconds":0.02,"coldStartSeconds":0,
        "clock":"2026-01-31T12:00:00Z","ids":"byName","outcomes":{
        "Browse the catalogue":{"outcome":"failed","failedStep":1}}})");
    const FileDescriptor nowhere(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    start(nowhere.get(), {"--home", bench.path(), "--scenario", scenario});
    waitUntil("it takes up its work", [&] { return fileExists(paths.agentContextFile()); });

    AgentRunRequest run;
    run.requestId = "11111111-1111-4111-8111-111111111111";
    run.projectName = "Corner Shop";
    run.target.choice = AgentRunRequest::Target::TestsByName{{"Browse the catalogue"}};
    run.write(paths);
    waitUntilEnded(run.requestId, paths);
    AgentExploreRequest exploration;
    exploration.requestId = "22222222-2222-4222-8222-222222222222";
    exploration.projectName = "Corner Shop";
    exploration.goal = "Open the cart";
    exploration.write(paths);
    waitUntilEnded(exploration.requestId, paths);
    ::kill(process, SIGTERM);
    EXPECT_EQ(wait(), 0);

    std::map<std::string, std::string> contents;
    for (const auto& name : bench.entries()) {
      const auto file = bench.path() / name;
      if (std::filesystem::is_directory(file)) continue;
      auto text = TestFiles::read(file);
      for (auto at = text.find(bench.path()); at != std::string::npos;
           at = text.find(bench.path())) {
        text.replace(at, bench.path().native().size(), "HOME");
      }
      contents.emplace(name, text);
    }
    return contents;
  }

 private:
  static void waitUntilEnded(const std::string& id, const AgentPaths& paths) {
    const auto file = AgentRunResult::fileURL(id, paths);
    waitUntil("the request has ended",
              [&] { return fileExists(file) && AgentRunResult::read(file).terminal; });
  }
};

// Fails when a date, an id or a duration differs, or when the home of the environment is touched.
TEST_F(RepeatableTest, EveryFileIsTheSameInTheNextRun) {
  auto first = filesAfterRequests();
  auto second = filesAfterRequests();
  for (auto* contents : {&first, &second}) {
    std::erase_if(*contents, [](const auto& each) {
      return each.first.ends_with("/instance.pid") || each.first.ends_with("/standin.log");
    });
  }
  EXPECT_GE(first.size(), 7U);
  for (const auto& [name, contents] : first) EXPECT_EQ(second[name], contents) << name;
  EXPECT_EQ(second.size(), first.size());
  EXPECT_EQ(home.entries(), std::vector<std::string>{"bench.json"});
}

}  // namespace
}  // namespace corvane::testing
