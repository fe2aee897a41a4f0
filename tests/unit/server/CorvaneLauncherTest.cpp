#include "corvane_mcp/app/CorvaneLauncher.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <latch>
#include <thread>

#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// Sets an environment variable, or removes it, for a while.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name(name) {
    if (value) {
      ::setenv(name, value, 1);
    } else {
      ::unsetenv(name);
    }
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable() { ::unsetenv(name); }

 private:
  const char* name;
};

constexpr const char* suppress = "CORVANE_MCP_SUPPRESS_LAUNCH";

class CorvaneLauncherTest : public ::testing::Test {
 protected:
  [[nodiscard]] CorvaneLauncher launcher(fs::path program = {}) {
    return {{.program = std::move(program),
             .home = home,
             .systemApplications = system,
             .isRunning = onlyProcessesOf(home)},
            bench.logger};
  }
  fs::path makeBundle(const fs::path& path) {
    fs::create_directories(path);
    return path;
  }
  /// A program inside a bundle of this name.
  fs::path makeProgram(const std::string& bundle) {
    const fs::path program = home / "Bundles" / bundle / "Contents" / "MacOS" / "corvane-mcp";
    TestFiles::write(program, "");
    return program;
  }

  ToolBench bench;
  const fs::path home = bench.home.path();
  const fs::path system = home / "SystemApplications";
  const fs::path derivedData = home / "Library" / "Developer" / "Xcode" / "DerivedData";
};

TEST_F(CorvaneLauncherTest, FindsNothingWhereNothingIs) {
  EXPECT_EQ(launcher().findCorvaneApp(), std::nullopt);
  EXPECT_EQ(launcher().bundledCorvaneApp(), std::nullopt);
  EXPECT_EQ(launcher().newestDerivedDataBuild(), std::nullopt);
}

TEST_F(CorvaneLauncherTest, LooksInItsPlacesInOrder) {
  const fs::path build = makeBundle(derivedData / "App" / "Products" / "Corvane.app");
  EXPECT_EQ(launcher().findCorvaneApp(), build);
  const fs::path own = makeBundle(home / "Applications" / "Corvane.app");
  EXPECT_EQ(launcher().findCorvaneApp(), own);
  const fs::path shared = makeBundle(system / "Corvane.app");
  EXPECT_EQ(launcher().findCorvaneApp(), shared);
  const fs::path program = makeProgram("Corvane.app");
  EXPECT_EQ(launcher(program).findCorvaneApp(), home / "Bundles" / "Corvane.app");
  // However new the build is, the installed one wins.
  TestFiles::setModified(build, std::chrono::system_clock::now() + std::chrono::hours(24));
  EXPECT_EQ(launcher().findCorvaneApp(), shared);
}

TEST_F(CorvaneLauncherTest, TakesWhateverStandsUnderTheAppsName) {
  TestFiles::write(home / "Applications" / "Corvane.app", "a file");
  EXPECT_EQ(launcher().findCorvaneApp(), home / "Applications" / "Corvane.app");
  fs::remove(home / "Applications" / "Corvane.app");
  fs::create_symlink(home / "nowhere", home / "Applications" / "Corvane.app");
  EXPECT_EQ(launcher().findCorvaneApp(), std::nullopt);
}

TEST_F(CorvaneLauncherTest, FindsTheBundleAroundTheProgram) {
  EXPECT_EQ(launcher(makeProgram("Corvane.app")).bundledCorvaneApp(),
            home / "Bundles" / "Corvane.app");
  EXPECT_EQ(launcher(makeProgram("Corvane Beta.app")).bundledCorvaneApp(),
            home / "Bundles" / "Corvane Beta.app");
}

TEST_F(CorvaneLauncherTest, FollowsLinksToTheProgramItself) {
  fs::create_symlink(makeProgram("Corvane.app"), home / "link");
  fs::create_symlink("link", home / "link to link");
  EXPECT_EQ(launcher(home / "link to link").bundledCorvaneApp(), home / "Bundles" / "Corvane.app");
}

TEST_F(CorvaneLauncherTest, TakesNoOtherFolderForTheBundle) {
  for (const char* name : {"Other.app", "MyCorvane.app", "Corvane", "Corvane.bundle", "corvane.app",
                           "Corvane.app.old"}) {
    EXPECT_EQ(launcher(makeProgram(name)).bundledCorvaneApp(), std::nullopt) << name;
  }
  for (const char* program : {"", "corvane-mcp", "/corvane-mcp", "/", "./x",
                              "/nowhere/Corvane.app/Contents/MacOS/corvane-mcp"}) {
    EXPECT_EQ(launcher(program).bundledCorvaneApp(), std::nullopt) << program;
  }
}

TEST_F(CorvaneLauncherTest, TakesTheNewestBuild) {
  const auto now = std::chrono::system_clock::now();
  const fs::path older = makeBundle(derivedData / "A" / "Build" / "Corvane.app");
  const fs::path newer = makeBundle(derivedData / "B" / "Build" / "Corvane.app");
  TestFiles::setModified(older, now - std::chrono::hours(2));
  TestFiles::setModified(newer, now - std::chrono::hours(1));
  EXPECT_EQ(launcher().newestDerivedDataBuild(), newer);
  TestFiles::setModified(older, now);
  EXPECT_EQ(launcher().newestDerivedDataBuild(), older);
}

TEST_F(CorvaneLauncherTest, TakesTheFirstOfBuildsOfOneAge) {
  const auto now = std::chrono::system_clock::now();
  const fs::path first = derivedData / "A" / "Build" / "Corvane.app";
  for (const auto& build :
       {derivedData / "B" / "Corvane.app", first, derivedData / "A" / "Late" / "Corvane.app"}) {
    TestFiles::setModified(makeBundle(build), now);
  }
  EXPECT_EQ(launcher().newestDerivedDataBuild(), first);
}

// Fails when a build's own folder is passed over.
TEST_F(CorvaneLauncherTest, LooksForBuildsInsideOfBuilds) {
  const auto now = std::chrono::system_clock::now();
  const fs::path inner = makeBundle(derivedData / "Corvane.app" / "PlugIns" / "Corvane.app");
  TestFiles::setModified(derivedData / "Corvane.app", now - std::chrono::hours(1));
  TestFiles::setModified(inner, now);
  EXPECT_EQ(launcher().newestDerivedDataBuild(), inner);
}

TEST_F(CorvaneLauncherTest, TakesTheOnlyBuildHoweverOld) {
  const fs::path build = makeBundle(derivedData / "A" / "Corvane.app");
  TestFiles::setModified(build, FileTime{std::chrono::seconds(0)});
  EXPECT_EQ(launcher().newestDerivedDataBuild(), build);
}

TEST_F(CorvaneLauncherTest, PassesOverBuildsThatNobodyMeansToRun) {
  makeBundle(derivedData / "A" / "Debug-maccatalyst" / "Corvane.app");
  makeBundle(derivedData / "A" / "Index.noindex" / "Build" / "Corvane.app");
  makeBundle(derivedData / "A" / ".hidden" / "Corvane.app");
  makeBundle(derivedData / "A" / "Corvane2.app");
  makeBundle(derivedData / "A" / "Corvane.app.dSYM");
  EXPECT_EQ(launcher().newestDerivedDataBuild(), std::nullopt);
  const fs::path build = makeBundle(derivedData / "A" / "Debug" / "Corvane.app");
  EXPECT_EQ(launcher().newestDerivedDataBuild(), build);
}

// Fails when links to folders are followed: what is found through one would come first.
TEST_F(CorvaneLauncherTest, LeavesLinksToFoldersAlone) {
  makeBundle(home / "Elsewhere" / "Corvane.app");
  fs::create_directories(derivedData);
  fs::create_directory_symlink(home / "Elsewhere", derivedData / "0 link");
  EXPECT_EQ(launcher().newestDerivedDataBuild(), std::nullopt);
  const fs::path build = makeBundle(derivedData / "A" / "Corvane.app");
  fs::create_directory_symlink(derivedData, derivedData / "A" / "0 circle");
  EXPECT_EQ(launcher().newestDerivedDataBuild(), build);
}

// Fails when a build whose time cannot be read is passed over, or counts as newer than the oldest.
TEST_F(CorvaneLauncherTest, TakesABuildWithoutAReadableTimeForLackOfAnother) {
  const fs::path dangling = derivedData / "B" / "Corvane.app";
  fs::create_directories(dangling.parent_path());
  fs::create_symlink("nowhere", dangling);
  EXPECT_EQ(launcher().newestDerivedDataBuild(), dangling);
  // Whether it is found before the other or after it.
  for (const char* place : {"A", "C"}) {
    const fs::path build = makeBundle(derivedData / place / "Corvane.app");
    TestFiles::setModified(build, FileTime{std::chrono::seconds(-2'000'000'000)});
    EXPECT_EQ(launcher().newestDerivedDataBuild(), build);
    fs::remove_all(derivedData / place);
  }
}

TEST_F(CorvaneLauncherTest, StartsTheApp) {
  const EnvironmentVariable unset(suppress, nullptr);
  const TemporaryApp app(home / "Double.app");
  EXPECT_TRUE(launcher().launch(app.bundle()));
  EXPECT_TRUE(ProcessFacts::isAlive(app.waitUntilUp()));
  EXPECT_EQ(bench.logged(), std::vector<std::string>());
}

TEST_F(CorvaneLauncherTest, StartsNothingWhenLaunchesAreSuppressed) {
  const EnvironmentVariable set(suppress, "1");
  const TemporaryApp app(home / "Double.app");
  EXPECT_FALSE(launcher().launch(app.bundle()));
  EXPECT_TRUE(ProcessFacts::withCommandLine({app.program().native()}).empty());
  EXPECT_EQ(bench.logged(),
            std::vector<std::string>{
                "WARN Launch suppressed via CORVANE_MCP_SUPPRESS_LAUNCH=1 (smoke-test only)"});
}

TEST_F(CorvaneLauncherTest, SuppressesLaunchesForExactlyOneValue) {
  for (const char* value : {"", "0", "true", "yes", "11", " 1", "1 "}) {
    const EnvironmentVariable set(suppress, value);
    const TemporaryApp app(home / "Double.app");
    EXPECT_TRUE(launcher().launch(app.bundle())) << value;
  }
}

TEST_F(CorvaneLauncherTest, SaysWhyTheAppCannotBeStarted) {
  EXPECT_FALSE(launcher().launch(makeBundle(home / "Corvane.app")));
  EXPECT_EQ(bench.logged(), std::vector<std::string>{"ERROR Failed to launch Corvane.app at " +
                                                     (home / "Corvane.app").string() +
                                                     ": No such file or directory"});
}

// Fails when the programs of other bundles are taken for the app.
TEST_F(CorvaneLauncherTest, TellsTheAppFromOtherBundles) {
  TemporaryApp other(home / "Other.app");
  other.open();
  EXPECT_FALSE(launcher().isRunning());
}

TEST_F(CorvaneLauncherTest, KnowsWhetherTheAppRuns) {
  EXPECT_FALSE(launcher().isRunning());
  {
    TemporaryApp app(home / "Anywhere" / "Corvane.app");
    app.open();
    EXPECT_TRUE(launcher().isRunning());
  }
  EXPECT_FALSE(launcher().isRunning());
}

// Fails when calls do not take turns.
TEST_F(CorvaneLauncherTest, StartsTheAppOnceForSeveralThatNeedIt) {
  const TemporaryApp app(home / "Applications" / "Corvane.app");
  const CorvaneLauncher shared = launcher();
  std::latch all(6);
  std::array<std::thread, 6> callers;
  for (auto& caller : callers) {
    caller = std::thread([&] {
      all.arrive_and_wait();
      EXPECT_TRUE(shared.ensureRunning(app.bundle()));
    });
  }
  for (auto& caller : callers) caller.join();
  EXPECT_EQ(ProcessFacts::withCommandLine({app.program().native()}).size(), 1U);
}

}  // namespace
}  // namespace corvane::testing
