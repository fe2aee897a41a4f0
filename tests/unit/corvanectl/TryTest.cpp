#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "StandInHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// The processes whose command line names `text`.
std::vector<std::string> processesWith(const std::string& text) {
  std::vector<std::string> found;
  std::error_code gone;
  for (const auto& entry : fs::directory_iterator("/proc", gone)) {
    const std::string line = TestFiles::read(entry.path() / "cmdline");
    if (line.find(text) != std::string::npos) found.push_back(entry.path().filename());
  }
  return found;
}

/// Trials in a home that is not the user's.
class TryTest : public ::testing::Test {
 protected:
  ~TryTest() override {
    for (const fs::path& folder : {trial(), other()}) {
      (void)home.run({"try", "--stop", "--home", folder});
    }
  }

  [[nodiscard]] fs::path trial() const {
    return home.home().path() / ".local" / "share" / "CorvaneTrial";
  }
  [[nodiscard]] fs::path other() const { return home.home().path() / "other trial"; }
  [[nodiscard]] static fs::path results(const fs::path& folder) {
    return folder / ".local" / "share" / "Corvane" / "AgentResults";
  }
  [[nodiscard]] static fs::path programOf(const fs::path& folder) {
    return folder / "Program" / "Corvane.app" / "Contents" / "MacOS" / "Corvane";
  }

  /// Runs corvanectl with the server of a trial.
  [[nodiscard]] ProgramRun in(const fs::path& folder, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--server", folder / "corvane-mcp"});
    return home.run(arguments);
  }
  /// Has the app leave a result.
  void resetWorldMap(const fs::path& folder) const {
    const auto run = in(folder, {"call", "reset_world_map", R"({"projectName":"Corner Shop"})"});
    EXPECT_EQ(run.status, 0) << run.output << run.errors;
    waitUntil("the request is done", [&] { return !listVisible(results(folder)).empty(); });
  }

  const StandInHome home;
};

TEST_F(TryTest, OffersAServerWithAnAppOfItsOwn) {
  const auto run = home.run({"try"});
  EXPECT_EQ(run.status, 0) << run.errors;
  const std::string server = trial() / "corvane-mcp";
  EXPECT_TRUE(run.output.starts_with(
      "The trial runs: a stand-in for Corvane.app with two sample projects.\nIts home is " +
      trial().string() +
      "\n\nIts server, for your agent:\n  corvanectl setup --name corvane-trial "
      "--server " +
      server + "\nor, in Claude Code:\n  claude mcp add corvane-trial -- " + server +
      "\nor, pasted into the configuration of another client:\n  "
      R"({"mcpServers":{"corvane-trial":{"command":")" +
      server + "\"}}}\n\nThen ask it:\n"))
      << run.output;
  EXPECT_EQ(in(trial(), {"names", "projects"}).output, "Corner Shop\nTrail Log\n");
  const auto health = in(trial(), {"health"}).output;
  EXPECT_NE(health.find("  Corvane.app:      " + (trial() / "Corvane.app").string() + "\n"),
            std::string::npos)
      << health;
  const auto failing =
      in(trial(), {"run", "Corner Shop", "--test", "Redeem a voucher", "--follow"});
  EXPECT_EQ(failing.status, 1) << failing.output << failing.errors;
  EXPECT_EQ(in(trial(), {"doctor"}).status, 0);
}

// Fails when the trial shares anything with the user's own folders.
TEST_F(TryTest, LeavesTheUsersFoldersAlone) {
  const auto before = home.home().entries();
  EXPECT_EQ(home.run({"try"}).status, 0);
  resetWorldMap(trial());
  EXPECT_EQ(home.run({"try", "--stop", "--reset"}).status, 0);
  EXPECT_EQ(home.home().entries(), before);

  const fs::path data = home.home().path() / "data";
  fs::create_directories(data);
  auto environment = home.environment();
  environment.push_back("XDG_DATA_HOME=" + data.string());
  EXPECT_EQ(runCorvanectl({"try"}, {}, environment).status, 0);
  EXPECT_EQ(listVisible(data), std::vector{data / "CorvaneTrial"});
  EXPECT_EQ(runCorvanectl({"try", "--stop", "--reset"}, {}, environment).status, 0);
  EXPECT_TRUE(listVisible(data).empty());
}

TEST_F(TryTest, StoppingLeavesNothingRunningAndKeepsTheWorkspace) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  EXPECT_EQ(processesWith(trial()).size(), 1U);
  resetWorldMap(trial());
  const auto stopped = home.run({"try", "--stop"});
  EXPECT_EQ(stopped.status, 0);
  EXPECT_EQ(stopped.output, "The trial has ended: " + trial().string() + "\n");
  EXPECT_TRUE(processesWith(trial()).empty());
  EXPECT_EQ(home.run({"try"}).status, 0);
  EXPECT_EQ(listVisible(results(trial())).size(), 1U);
}

// Fails when a client's server is left, which would start the stand-in again.
TEST_F(TryTest, StoppingEndsTheServersOfClients) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  Pseudoterminal terminal(80);
  const int client = terminal.start({"--server", trial() / "corvane-mcp", "run", "Corner Shop",
                                     "--test", "Browse the catalogue", "--follow"});
  (void)terminal.readUntil("step 0/");
  EXPECT_EQ(processesWith(trial() / "Corvane.app" / "Contents" / "MacOS" / "corvane-mcp").size(),
            1U);
  EXPECT_EQ(home.run({"try", "--stop"}).status, 0);
  EXPECT_EQ(waitForStatus(client), 2);
  EXPECT_TRUE(processesWith(trial() / "Corvane.app").empty());
}

TEST_F(TryTest, ResettingBeginsAnew) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  resetWorldMap(trial());
  const auto run = home.run({"try", "--reset"});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_TRUE(run.output.starts_with("The trial runs: ")) << run.output;
  EXPECT_TRUE(listVisible(results(trial())).empty());
  EXPECT_EQ(in(trial(), {"names", "projects"}).output, "Corner Shop\nTrail Log\n");
}

TEST_F(TryTest, ASecondOneOnTheSameHomeIsTheSame) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  const auto process = processesWith(trial());
  const auto run = home.run({"try"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.output.starts_with("The trial runs already: ")) << run.output;
  EXPECT_EQ(processesWith(trial()), process);
}

// Fails when what is done in one shows in the other.
TEST_F(TryTest, TwoHomesAreTwoTrials) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  const auto run = home.run({"try", "--home", other()});
  EXPECT_EQ(run.status, 0) << run.errors;
  EXPECT_NE(
      run.output.find("claude mcp add corvane-trial -- '" + other().string() + "/corvane-mcp'"),
      std::string::npos)
      << run.output;
  EXPECT_NE(run.output.find("corvanectl try --stop --home '" + other().string() + "'\n"),
            std::string::npos);
  resetWorldMap(other());
  EXPECT_TRUE(listVisible(results(trial())).empty());
  EXPECT_EQ(home.run({"try", "--stop", "--home", other()}).status, 0);
  EXPECT_EQ(processesWith(trial()).size(), 1U);
}

// Fails when the server begins without its own app because another one runs.
TEST_F(TryTest, TheServerBringsItsAppBesideAnother) {
  home.startApp();
  EXPECT_EQ(home.run({"try"}).status, 0);
  EXPECT_EQ(home.run({"try", "--stop"}).status, 0);
  // As the machine has it, with the other app in sight.
  auto environment = home.environment();
  std::erase_if(environment, [](const auto& each) { return each.starts_with("LD_PRELOAD="); });
  const auto run = runCorvanectl({"--server", trial() / "corvane-mcp", "run", "Trail Log", "--test",
                                  "Switch to miles", "--follow"},
                                 {}, environment);
  EXPECT_EQ(run.status, 0) << run.output << run.errors;
  EXPECT_EQ(processesWith(trial()).size(), 1U);
  EXPECT_TRUE(listVisible(home.paths().agentResultsDirectory()).empty());
}

TEST_F(TryTest, AnotherFolderIsNotTaken) {
  TestFiles::write(other() / "mine", "");
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"try", "--home", other()}, {"try", "--reset", "--home", other()}}) {
    const auto run = home.run(arguments);
    EXPECT_EQ(run.status, 64);
    EXPECT_EQ(run.errors, "corvanectl: " + other().string() +
                              " holds something else; a trial takes a folder of its own\n");
  }
  EXPECT_EQ(home.run({"try", "--stop", "--reset", "--home", other()}).output,
            "There is no trial: " + other().string() + "\n");
  EXPECT_TRUE(fs::exists(other() / "mine"));
}

TEST_F(TryTest, WhatIsNotTheTrialsStaysWhenItGoes) {
  EXPECT_EQ(home.run({"try"}).status, 0);
  TestFiles::write(trial() / "mine", "");
  EXPECT_EQ(home.run({"try", "--stop", "--reset"}).status, 0);
  EXPECT_EQ(listVisible(trial()), std::vector{trial() / "mine"});
}

/// An installation: the programs in bin, and what is put in the stand-in's place.
class InstalledTryTest : public TryTest {
 protected:
  InstalledTryTest() {
    fs::create_directories(bin());
    for (const char* program : {"corvanectl", "corvane-mcp"}) {
      fs::copy_file(fs::path(CORVANECTL_PROGRAM).parent_path() / program, bin() / program);
    }
  }

  [[nodiscard]] fs::path bin() const { return home.home().path() / "prefix" / "bin"; }
  [[nodiscard]] fs::path bundle() const {
    return home.home().path() / "prefix" / "libexec" / "corvane-mcp" / "Corvane.app";
  }
  [[nodiscard]] ProgramRun tryIt(const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments{"try", "--home", other()};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runCorvanectl(arguments, {}, home.environment(), bin() / "corvanectl");
  }
};

TEST_F(InstalledTryTest, RunsFromAnInstallation) {
  fs::create_directories(bundle().parent_path());
  fs::create_directory_symlink(STANDIN_BUNDLE, bundle());
  EXPECT_EQ(tryIt().status, 0);
  EXPECT_EQ(fs::read_symlink(other() / "Program" / "Corvane.app"), bundle());
  EXPECT_EQ(in(other(), {"names", "projects"}).output, "Corner Shop\nTrail Log\n");
  EXPECT_EQ(tryIt({"--stop"}).status, 0);
}

TEST_F(InstalledTryTest, TellsThatThereIsNoStandIn) {
  const auto run = tryIt();
  EXPECT_EQ(run.status, 5);
  EXPECT_EQ(run.errors,
            "corvanectl: the stand-in for Corvane.app is not installed: there is none in " +
                bin().string() +
                " or beside it in libexec/corvane-mcp. On Debian it is the package "
                "corvane-mcp-standin\n");
}

TEST_F(InstalledTryTest, TellsThatTheStandInDoesNotStart) {
  TestFiles::write(bundle() / "Contents" / "Info.plist", "");
  TestFiles::write(bundle() / "Contents" / "MacOS" / "Corvane",
                   "#!/bin/sh\necho 'no libcairo.so.2' >&2\nexit 127\n");
  TestFiles::setMode(bundle() / "Contents" / "MacOS" / "Corvane", 0755);
  const auto run = tryIt();
  EXPECT_EQ(run.status, 5);
  EXPECT_EQ(
      run.errors,
      "corvanectl: the stand-in for Corvane.app ended with exit status 127: no libcairo.so.2\n");
  const auto served = tryIt({"--serve"});
  EXPECT_EQ(served.status, 5);
  EXPECT_EQ(served.errors, run.errors + "corvanectl: the trial does not run\n");
}

}  // namespace
}  // namespace corvane::testing
