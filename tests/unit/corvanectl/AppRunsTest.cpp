#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <future>
#include <sstream>
#include <string>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "ProgramRun.h"
#include "tests/support/Preload.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// corvanectl with the real server, in a private home in which the stand-in plays the app.
class AppRunsTest : public ::testing::Test {
 protected:
  AppRunsTest() {
    ::setenv("HOME", home.path().c_str(), 1);
    ::setenv("CFFIXED_USER_HOME", home.path().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
    ::setenv(preloadVariable, CORVANE_OWN_PROCESSES, 1);
    // The sanitizer wants to be loaded first, but does not need to be.
    ::setenv("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0", 1);
    ::setenv("PATH", "/usr/bin:/bin", 1);
  }
  ~AppRunsTest() override {
    if (fileExists(program())) control("--quit");
    ::unsetenv(preloadVariable);
  }

  /// Installs an app whose tests turn out as `outcomes`, members of a JSON object, say.
  void install(const std::string& outcomes = {}) {
    TestFiles::write(home.programPaths().applicationSupport() / "StandIn" / "settings.json",
                     R"({"stepSeconds":0.05,"buildSeconds":0.05,"coldStartSeconds":0,)"
                     R"("captures":false,"outcomes":{)" +
                         outcomes + "}}");
    fs::create_directories(bundle().parent_path());
    fs::create_directory_symlink(fs::path(CORVANE_STANDIN_BUNDLE), bundle());
  }
  /// Starts the app as a user would.
  void open() const {
    if (::fork() == 0) {
      ::setsid();
      ::execl(program().c_str(), program().c_str(), nullptr);
      ::_exit(127);
    }
  }
  void control(const char* option) const {
    const pid_t child = ::fork();
    if (child == 0) {
      ::execl(program().c_str(), program().c_str(), option, nullptr);
      ::_exit(127);
    }
    ::waitpid(child, nullptr, 0);
  }
  [[nodiscard]] fs::path bundle() const { return home.path() / "Applications" / "Corvane.app"; }
  [[nodiscard]] fs::path program() const { return bundle() / "Contents" / "MacOS" / "Corvane"; }

  static std::vector<std::string> following(const std::string& test,
                                            std::vector<std::string> more = {}) {
    std::vector<std::string> arguments{"run", "Corner Shop", "--test", test, "--follow"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
  }

  /// Runs the program in a pipe to its end; no escape may come of it.
  static ProgramRun inPipe(const std::vector<std::string>& arguments) {
    ProgramRun run = runCorvanectl(arguments);
    EXPECT_EQ(run.output.find('\033'), std::string::npos) << run.output;
    EXPECT_EQ(run.errors.find('\033'), std::string::npos) << run.errors;
    return run;
  }
  /// Runs the program at a terminal to its end.
  static ProgramRun atTerminal(const std::vector<std::string>& arguments) {
    Pseudoterminal terminal(80);
    ProgramRun run;
    const int process = terminal.start(arguments);
    run.output = terminal.readAll();
    run.status = waitForStatus(process);
    return run;
  }
  /// Runs the program both ways and expects this status of both.
  static void expectStatus(int status, const std::vector<std::string>& arguments) {
    const ProgramRun piped = inPipe(arguments);
    EXPECT_EQ(piped.status, status) << "in a pipe: " << piped.output << piped.errors;
    const ProgramRun shown = atTerminal(arguments);
    EXPECT_EQ(shown.status, status) << "at a terminal: " << shown.output;
  }

  /// The file of the only result; waits until it says `status`.
  [[nodiscard]] fs::path resultOnce(const std::string& status) const {
    fs::path file;
    waitUntil("the request is " + status, [&] {
      const auto files = listVisible(home.programPaths().agentResultsDirectory());
      if (files.size() != 1) return false;
      file = files.front();
      try {
        return AgentRunResult::read(file).status == status;
      } catch (const std::runtime_error&) {
        return false;
      }
    });
    return file;
  }
  static std::string idIn(const std::string& output) {
    return AnswerTexts::readRequestId(output).value_or("no id in " + output);
  }
  static std::string waysOn(const std::string& id) {
    return "corvanectl: the request goes on; follow it with 'corvanectl follow " + id +
           "' or cancel it with 'corvanectl cancel " + id + "'\n";
  }

  const TemporaryHome home;
};

TEST_F(AppRunsTest, EveryEndOfARunHasItsStatus) {
  install(
      R"("Check out as guest":{"outcome":"warning"},"Add to cart and remove":{"outcome":"blocked"})");
  expectStatus(0, following("Browse the catalogue"));
  expectStatus(1, following("Redeem a voucher"));
  expectStatus(0, following("Search and filter"));
  expectStatus(3, following("Check out as guest"));
  expectStatus(3, following("Add to cart and remove"));
}

TEST_F(AppRunsTest, EveryTroubleHasItsStatus) {
  install(R"("Browse the catalogue":{"outcome":"hold"})");
  expectStatus(1, {"follow", "0f8fad5b-d9cb-469f-a165-70867728950e"});
  expectStatus(2,
               {"--server", "/nowhere/server", "follow", "0f8fad5b-d9cb-469f-a165-70867728950e"});
  expectStatus(
      4, following("Browse the catalogue", {"--no-build", "--timeout", "3", "--cancel-on-exit"}));
  expectStatus(64, {"follow"});
  expectStatus(64, {"follow", "ID", "--events", "--json"});
  expectStatus(64, {"follow", "ID", "--color", "perhaps"});
  expectStatus(74, following("Browse the catalogue", {"--pictures", "/dev/null/shots"}));
}

// Fails when a launch that failed is passed over, or waited for for ever.
TEST_F(AppRunsTest, WithoutAnAppARunEndsWithTheWaysOn) {
  expectStatus(5, {"run", "Corner Shop", "--all"});
  const auto arguments = following("Sign in", {"--app-timeout", "1"});
  const ProgramRun run = inPipe(arguments);
  EXPECT_EQ(run.status, 5);
  const std::string id = idIn(run.output);
  EXPECT_NE(
      run.output.find("  Corvane.app: <not found>  (LAUNCH FAILED — open Corvane manually)\n"),
      std::string::npos);
  EXPECT_NE(run.output.find("Corvane.app is not running, so the request does not move. Open the "
                            "app, or withdraw the request with 'corvanectl cancel " +
                            id + "'.\n"),
            std::string::npos);
  EXPECT_EQ(run.output.find("get_result"), std::string::npos);
  EXPECT_EQ(run.errors,
            "corvanectl: Corvane.app could not be started; open it yourself\n"
            "corvanectl: no Corvane.app has been running for 1 s\n" +
                waysOn(id));
  // Both ways on lead somewhere.
  EXPECT_EQ(inPipe({"cancel", id}).output,
            "Run request " + id + " cancelled (Corvane had not picked it up yet).\n");
  EXPECT_EQ(inPipe({"follow", id}).status, 3);
  EXPECT_EQ(atTerminal(arguments).status, 5);
}

TEST_F(AppRunsTest, AnAppThatCrashesIsTold) {
  install(R"("Browse the catalogue":{"outcome":"crash","failedStep":2})");
  const auto run = inPipe(following("Browse the catalogue", {"--app-timeout", "1"}));
  EXPECT_EQ(run.status, 5);
  EXPECT_NE(run.output.find("\nCorvane.app is not running, so the request does not move."),
            std::string::npos)
      << run.output;
  EXPECT_EQ(run.errors,
            "corvanectl: no Corvane.app has been running for 1 s\n" + waysOn(idIn(run.output)));
}

TEST_F(AppRunsTest, AnAppThatQuitsEndsTheRun) {
  install(R"("Browse the catalogue":{"outcome":"hold"})");
  auto run =
      std::async(std::launch::async, [] { return inPipe(following("Browse the catalogue")); });
  (void)resultOnce("running");
  control("--quit");
  const ProgramRun ended = run.get();
  EXPECT_EQ(ended.status, 3);
  EXPECT_NE(ended.output.find("error: Corner Shop"), std::string::npos) << ended.output;
}

TEST_F(AppRunsTest, AnAppThatHangsIsTold) {
  install(R"("Browse the catalogue":{"outcome":"wedged","failedStep":1})");
  auto run = std::async(std::launch::async, [] {
    return inPipe(following("Browse the catalogue", {"--app-timeout", "2", "--cancel-on-exit"}));
  });
  const fs::path result = resultOnce("running");
  waitUntil("the test hangs", [&] {
    const auto progress = AgentRunResult::read(result).progress;
    return progress && progress->currentStep == 2;
  });
  fs::last_write_time(result, fs::file_time_type::clock::now() - std::chrono::seconds(100));
  const ProgramRun ended = run.get();
  EXPECT_EQ(ended.status, 5);
  const std::string id = idIn(ended.output);
  EXPECT_NE(ended.output.find("Corvane.app runs but the request has not moved for over a minute. "
                              "Look at the app, or cancel the request with 'corvanectl cancel " +
                              id + "'.\n"),
            std::string::npos)
      << ended.output;
  EXPECT_EQ(ended.errors,
            "corvanectl: Corvane.app has not worked on the request for 2 s\n"
            "corvanectl: the request was told to cancel: " +
                id + "\n");
  (void)resultOnce("cancelled");
}

TEST_F(AppRunsTest, AnAppThatComesLateRunsWhatWaits) {
  ProgramRun run;
  Pseudoterminal terminal(80);
  const int process = terminal.start(following("Browse the catalogue"));
  terminal.readUntil("Corvane.app is not running");
  install();
  open();
  run.output = terminal.readAll();
  EXPECT_EQ(waitForStatus(process), 0) << run.output;
  EXPECT_NE(run.output.find("passed: Corner Shop"), std::string::npos);
}

// Fails when Ctrl-C loses the id, or leaves a run behind that was to be cancelled.
TEST_F(AppRunsTest, CtrlCTellsHowToGoOnOrCancels) {
  install(R"("Browse the catalogue":{"outcome":"hold"})");
  for (const bool cancels : {false, true}) {
    Pseudoterminal terminal(80);
    const int process = terminal.start(
        following("Browse the catalogue", cancels ? std::vector<std::string>{"--cancel-on-exit"}
                                                  : std::vector<std::string>{}));
    terminal.readUntil("step 0/");
    terminal.type("\x03");
    const std::string shown = terminal.readAll();
    EXPECT_EQ(waitForStatus(process), 128 + SIGINT);
    const std::string id = idIn(shown.substr(0, shown.find('\r', shown.find("requestId"))));
    if (cancels) {
      EXPECT_NE(shown.find("the request was told to cancel: " + id), std::string::npos) << shown;
    } else {
      EXPECT_NE(shown.find("corvanectl follow " + id), std::string::npos) << shown;
      EXPECT_EQ(inPipe({"cancel", id}).status, 0);
    }
    EXPECT_EQ(inPipe({"follow", id}).status, 3);
  }
}

// Fails when the id comes with the result only.
TEST_F(AppRunsTest, AnInterruptedRunInJsonHasToldItsId) {
  install(R"("Browse the catalogue":{"outcome":"hold"})");
  const auto run =
      inPipe(following("Browse the catalogue", {"--json", "--no-build", "--timeout", "5"}));
  EXPECT_EQ(run.status, 4);
  EXPECT_EQ(run.output, "");
  const std::string id = idIn(run.errors);
  EXPECT_EQ(run.errors, "requestId: " + id +
                            "\ncorvanectl: the request has not finished in the time given; its "
                            "status is running\n" +
                            waysOn(id));
}

TEST_F(AppRunsTest, EventsAreLinesOfJsonThatBeginWithTheId) {
  install();
  (void)inPipe(following("Redeem a voucher"));
  const auto run = inPipe(following("Redeem a voucher", {"--events"}));
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.errors, "");
  std::vector<std::string> names;
  std::istringstream lines(run.output);
  for (std::string line; std::getline(lines, line);) {
    const AnyCodable event = readJson(line);
    if (names.empty()) {
      EXPECT_TRUE(event.findAs<std::string>("requestId")) << line;
    }
    const std::string& name = *event.findAs<std::string>("event");
    if (names.empty() || names.back() != name) names.push_back(name);
    if (name == "finished") {
      EXPECT_EQ(*event.find("exitStatus"), AnyCodable(1));
      EXPECT_EQ(*event.find("result")->find("status"), AnyCodable("failed"));
    }
  }
  EXPECT_EQ(names.front(), "dispatched");
  EXPECT_EQ(names.back(), "finished");
  EXPECT_EQ(names.at(names.size() - 2), "testFinished");
}

// Fails when colours come where nobody wants them.
TEST_F(AppRunsTest, ColoursAreAMatterOfChoice) {
  install();
  constexpr std::string_view green = "\033[32m✓";
  const auto shown = [](const std::vector<std::string>& more) {
    return atTerminal(following("Browse the catalogue", more)).output;
  };
  EXPECT_NE(shown({}).find(green), std::string::npos);
  EXPECT_EQ(shown({"--color", "never"}).find(green), std::string::npos);
  ::setenv("NO_COLOR", "1", 1);
  EXPECT_EQ(shown({}).find(green), std::string::npos);
  EXPECT_NE(shown({"--color", "always"}).find(green), std::string::npos);
  ::unsetenv("NO_COLOR");
}

}  // namespace
}  // namespace corvane::testing
