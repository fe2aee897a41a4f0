#include <gtest/gtest.h>

#include <filesystem>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/JsonReader.h"
#include "FakeServerScript.h"
#include "StandInHome.h"

namespace corvane::testing {
namespace {

constexpr const char* newId = "3f2a0000-0000-4000-8000-000000000001";
constexpr const char* oldId = "4b2b0000-0000-4000-8000-000000000002";

/// Everyday commands with the built server, in a private home.
class EverydayCommandsTest : public ::testing::Test {
 protected:
  /// A result as the app leaves it.
  void leaveResult(const std::string& id, const std::string& members, int secondsAgo = 0) {
    const auto file = home.paths().agentResultsDirectory() / (id + ".json");
    writeFileWhole(file, R"({"schemaVersion":3,"requestId":")" + id +
                             R"(","source":"run_test","updatedAt":"2026-01-31T12:00:00Z",)" +
                             members + "}");
    std::filesystem::last_write_time(
        file, std::filesystem::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
  }

  void publishWorkspace() {
    writeFileWhole(
        home.paths().agentContextFile(),
        R"({"schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z","currentProjectName":"Shop",)"
        R"("projects":[{"name":"Shop","platform":"iOS","suites":[{"name":"Smoke","testIds":["1"]}],)"
        R"("tests":[{"id":"1","name":"Sign in","steps":[{"type":"tap","description":"x"}],)"
        R"("parameterNames":["user","password"],"verified":true},)"
        R"({"id":"2","name":"[smoke]","steps":[],"isFlaky":true}]},{"name":"Blog","tests":[]}]})");
  }

  const std::string twoTests =
      R"("status":"failed","terminal":true,"projectName":"Shop","platform":"iOS","tests":[)"
      R"({"testId":"1","testName":"Sign in","status":"passed","durationSeconds":2,"steps":[)"
      R"({"index":0,"title":"TAP","description":"Tap \"Go\"","status":"passed","healedByAI":true,)"
      R"("durationSeconds":0.5}]},)"
      R"({"testId":"2","testName":"[smoke]","status":"failed","durationSeconds":3,"steps":[)"
      R"({"index":0,"title":"TAP","description":"","status":"passed","healedByAI":false},)"
      R"({"index":1,"title":"CHECK","description":"Is it <b>there</b>?","status":"failed",)"
      R"("healedByAI":false,"failureReason":"It is\nnot."}]}])";

  StandInHome home;
};

// Fails when the newest is not first.
TEST_F(EverydayCommandsTest, ListsRequests) {
  EXPECT_EQ(home.run({"list"}).output,
            "Corvane.app has no request in hand and has answered none of late.\n");
  leaveResult(oldId, R"("status":"passed","terminal":true,"projectName":"Shop")", 7200);
  leaveResult(newId, twoTests, 0);
  const auto run = home.run({"list"});
  EXPECT_EQ(run.status, 0);
  const std::string head =
      "REQUEST                               STATUS  FROM      PROJECT  CHANGED\n"
      "3f2a0000-0000-4000-8000-000000000001  failed  run_test  Shop     ";
  EXPECT_EQ(run.output.substr(0, head.size()), head);
  EXPECT_NE(
      run.output.find("\n4b2b0000-0000-4000-8000-000000000002  passed  run_test  Shop     120 min"),
      std::string::npos)
      << run.output;
  const AnyCodable list = readJson(home.run({"list", "--json"}).output);
  ASSERT_EQ(list.array()->size(), 2U);
  EXPECT_EQ(*list.array()->front().find("requestId"), AnyCodable(newId));
  EXPECT_EQ(*list.array()->front().find("projectName"), AnyCodable("Shop"));
}

TEST_F(EverydayCommandsTest, TellsTheStatus) {
  leaveResult(newId, twoTests);
  const auto run = home.run({"status"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.output.starts_with(
      "Corvane.app is not running; 'corvanectl run' starts it.\n\nREQUEST  "))
      << run.output;
  EXPECT_EQ(*readJson(home.run({"status", "--json"}).output).find("appRunning"), AnyCodable(false));
}

TEST_F(EverydayCommandsTest, ListsProjects) {
  const auto none = home.run({"projects"});
  EXPECT_EQ(none.status, 64);
  EXPECT_EQ(none.errors,
            "corvanectl: Corvane.app has not published its workspace yet; open it once "
            "('corvanectl doctor' tells what is missing)\n");
  publishWorkspace();
  const auto run = home.run({"projects"});
  EXPECT_EQ(run.output,
            "PROJECT  TESTS  PLATFORM\n"
            "Blog     0\n"
            "Shop     2      iOS       open in Corvane.app\n");
  EXPECT_EQ(
      run.errors,
      "corvanectl: warning: Corvane.app is not running; context reflects the last session and "
      "may be stale. run_test/create_test will launch it.\n");
  EXPECT_EQ(home.run({"projects", "--json"}).output,
            R"([{"name":"Blog","open":false,"testCount":0},)"
            R"({"name":"Shop","open":true,"platform":"iOS","testCount":2}])"
            "\n");
}

TEST_F(EverydayCommandsTest, ListsTests) {
  publishWorkspace();
  const std::string shop =
      "Shop\n\n"
      "TEST     STEPS  REMARKS\n"
      "Sign in  1      verified; takes user, password\n"
      "[smoke]  0      flaky\n\n"
      "SUITE  TESTS\n"
      "Smoke  1\n";
  EXPECT_EQ(home.run({"tests", "shop"}).output, shop);
  EXPECT_EQ(home.run({"tests"}).output, shop);
  const auto unknown = home.run({"tests", "Shpo"});
  EXPECT_EQ(unknown.status, 64);
  EXPECT_EQ(unknown.errors,
            "corvanectl: the workspace has no project 'Shpo'. Did you mean 'Shop'? 'corvanectl "
            "projects' lists those it has\n");
  EXPECT_EQ(*readJson(home.run({"tests", "Shop", "--json"}).output).array()->back().find("name"),
            AnyCodable("[smoke]"));
}

TEST_F(EverydayCommandsTest, ShowsARequest) {
  leaveResult(newId, twoTests);
  const auto run = home.run({"show"});
  EXPECT_EQ(run.status, 0);
  EXPECT_TRUE(run.output.starts_with(std::string(newId) + "\nfailed: Shop on iOS\n")) << run.output;
  EXPECT_EQ(home.run({"show", "3f2"}).output, run.output);
  EXPECT_EQ(home.run({"show", newId}).output, run.output);
  EXPECT_EQ(*readJson(home.run({"show", "last", "--json"}).output).find("requestId"),
            AnyCodable(newId));
}

// Fails when tests or steps count from 1.
TEST_F(EverydayCommandsTest, ShowsTestsAndSteps) {
  leaveResult(newId, twoTests);
  EXPECT_EQ(home.run({"show", "--test", "0"}).output,
            std::string(newId) +
                "\ntest 0  passed  Sign in  (2 s)\n"
                "    step 0 healed 0.5 s TAP: Tap \"Go\"\n");
  EXPECT_EQ(home.run({"show", "--test", "1"}).output,
            std::string(newId) +
                "\ntest 1  failed  [smoke]  (3 s)\n"
                "    step 0 passed TAP\n"
                "    step 1 failed CHECK: Is it <b>there</b>?\n"
                "      It is not.\n");
  // Without a test the one that failed is meant; what the server says of its pictures follows.
  const auto step = home.run({"show", "--step", "1"});
  EXPECT_EQ(step.output,
            std::string(newId) +
                "\ntest 1  failed  [smoke]  (3 s)\n"
                "    step 1 failed CHECK: Is it <b>there</b>?\n"
                "      It is not.\n"
                "(no step-trace for this run — the run may predate trace support or produced no "
                "capture session)\n");
}

TEST_F(EverydayCommandsTest, NamesWhatIsWrongWithANumber) {
  leaveResult(newId, twoTests);
  const auto run = home.run({"show", "--test", "2"});
  EXPECT_EQ(run.status, 64);
  EXPECT_EQ(run.errors,
            "corvanectl: --test: there is no test 2; the result has 2, numbered from 0\n");
  EXPECT_EQ(home.run({"show", "--test", "0", "--step", "1"}).errors,
            "corvanectl: --step: there is no step 1; the result has 1, numbered from 0\n");
}

TEST_F(EverydayCommandsTest, ShowsWhatHasNotEnded) {
  leaveResult(newId, R"("status":"running","terminal":false,"projectName":"Shop")");
  const auto run = home.run({"show"});
  EXPECT_EQ(run.output, std::string(newId) +
                            "\nrunning: Shop\nCorvane.app is not running, so this request will not "
                            "go on. When the app starts, it ends it as an error.\n");
}

TEST_F(EverydayCommandsTest, SaysThatThereIsNoSuchRequest) {
  const auto run = home.run({"show", oldId});
  EXPECT_EQ(run.status, 1);
  EXPECT_TRUE(run.errors.starts_with("corvanectl: No result for requestId " + std::string(oldId)))
      << run.errors;
}

/// The requests that were dispatched.
std::vector<AnyCodable> dispatched(const StandInHome& home) {
  std::vector<AnyCodable> requests;
  for (const auto& file : listVisible(home.paths().agentRunRequestsDirectory())) {
    requests.push_back(readJson(readFile(file)));
  }
  return requests;
}

/// With no app to take the requests.
class RetryTest : public EverydayCommandsTest {
 protected:
  RetryTest() { std::filesystem::remove(home.home().path() / "Applications" / "Corvane.app"); }
};

// Fails when what passed runs again, or the platform is another one.
TEST_F(RetryTest, RunsWhatFailedAgain) {
  publishWorkspace();
  leaveResult(newId, twoTests);
  const auto run = home.run({"retry", "--failed"});
  const auto requests = dispatched(home);
  ASSERT_EQ(requests.size(), 1U) << run.errors;
  EXPECT_EQ(*requests[0].find("projectName"), AnyCodable("Shop"));
  EXPECT_EQ(*requests[0].find("target"),
            readJson(R"({"type":"testsByName","testNames":["[smoke]"]})"));
  EXPECT_EQ(*requests[0].find("targetPlatform"), AnyCodable("iOS"));
  EXPECT_TRUE(run.errors.starts_with(
      "Values for placeholders, --build, --no-build and --udid of the first run are not in its "
      "result; what is not given now is left to the project.\n"))
      << run.errors;
  EXPECT_EQ(run.status, 5);
}

TEST_F(RetryTest, RunsAllAgain) {
  publishWorkspace();
  leaveResult(newId, twoTests);
  (void)home.run({"retry", "3f2a", "--param", "user=me", "--no-build"});
  const auto requests = dispatched(home);
  ASSERT_EQ(requests.size(), 1U);
  EXPECT_EQ(*requests[0].find("target"),
            readJson(R"({"type":"testsByName","testNames":["Sign in","[smoke]"]})"));
  EXPECT_EQ(*requests[0].find("params"), readJson(R"({"user":"me"})"));
  EXPECT_EQ(*requests[0].find("buildFirst"), AnyCodable(false));
}

TEST_F(RetryTest, DispatchesNothingThatIsNotKnown) {
  publishWorkspace();
  leaveResult(newId, R"("status":"blocked","terminal":true,"projectName":"Shop")");
  const auto blocked = home.run({"retry"});
  EXPECT_EQ(blocked.status, 64);
  EXPECT_EQ(blocked.errors, "corvanectl: the result of " + std::string(newId) +
                                " names no tests that ran, so what to run again is not known; "
                                "'corvanectl run' takes the names\n");
  leaveResult(newId, R"("status":"running","terminal":false,"projectName":"Shop")");
  const auto unfinished = home.run({"retry"});
  EXPECT_EQ(unfinished.status, 64);
  EXPECT_EQ(unfinished.errors,
            "corvanectl: the request " + std::string(newId) + " has not ended ('corvanectl show " +
                newId + "' tells how it stands); only what has ended can be run again\n");
  leaveResult(newId,
              R"("status":"passed","terminal":true,"projectName":"Shop","tests":[{"testId":"1",)"
              R"("testName":"Sign in","status":"passed","durationSeconds":2,"steps":[]}])");
  const auto passed = home.run({"retry", "--failed"});
  EXPECT_EQ(passed.status, 0);
  EXPECT_EQ(passed.output,
            "No test of " + std::string(newId) + " failed; there is nothing to run again.\n");
  // Nothing failed, but nobody knows what else there was to run.
  leaveResult(newId,
              R"("status":"blocked","terminal":true,"projectName":"Shop","tests":[{"testId":"1",)"
              R"("testName":"Sign in","status":"passed","durationSeconds":2,"steps":[]}])");
  const auto cutShort = home.run({"retry", "--failed"});
  EXPECT_EQ(cutShort.status, 3);
  EXPECT_EQ(cutShort.errors, "corvanectl: no test of " + std::string(newId) +
                                 " failed, but its status is blocked; 'corvanectl run' runs the "
                                 "tests that it had not begun\n");
  EXPECT_TRUE(dispatched(home).empty());
}

TEST_F(RetryTest, ARunOfUnknownNamesIsNotDispatched) {
  publishWorkspace();
  const auto complaint = [this](const std::vector<std::string>& words) {
    const auto run = home.run(words);
    EXPECT_EQ(run.status, 64);
    return run.errors;
  };
  EXPECT_EQ(complaint({"run", "Shop", "--test", "Sing in"}),
            "corvanectl: the project 'Shop' has no test 'Sing in'. Did you mean 'Sign in'? "
            "(--unchecked runs it all the same)\n");
  EXPECT_EQ(complaint({"run", "Shop", "--suite", "Purchase"}),
            "corvanectl: the project 'Shop' has no suite 'Purchase'. It has 'Smoke'. (--unchecked "
            "runs it all the same)\n");
  EXPECT_EQ(complaint({"run", "shop", "--all"}),
            "corvanectl: the workspace has no project 'shop'. Did you mean 'Shop'? (--unchecked "
            "runs it all the same)\n");
  EXPECT_EQ(complaint({"run", "Blgo", "--all"}),
            "corvanectl: the workspace has no project 'Blgo'. Did you mean 'Blog'? (--unchecked "
            "runs it all the same)\n");
  EXPECT_TRUE(dispatched(home).empty());
  (void)home.run({"run", "Shop", "--test", "Sing in", "--unchecked"});
  EXPECT_EQ(dispatched(home).size(), 1U);
}

TEST_F(RetryTest, ARunIsDispatchedWhereNoWorkspaceIsPublished) {
  (void)home.run({"run", "Shop", "--test", "Sign in"});
  EXPECT_EQ(dispatched(home).size(), 1U);
}

// With the app at work, from dispatch to retry.
TEST(EverydayCommands, GoTogether) {
  const StandInHome home(R"({"Redeem a voucher":{"outcome":"failed"}})");
  home.startApp();
  const std::string id = home.finishRun({"Browse the catalogue", "Redeem a voucher"});
  const auto status = home.run({"status"});
  EXPECT_TRUE(status.output.starts_with("Corvane.app is running.\nAt work: nothing"))
      << status.output;
  EXPECT_EQ(home.run({"show", "last", "--test", "1"}).output.substr(0, 36), id);
  const auto retried = home.run({"--failed", "retry", "--follow"});
  EXPECT_EQ(retried.status, 1) << retried.errors;
  EXPECT_NE(retried.output.find("Redeem a voucher"), std::string::npos);
  EXPECT_EQ(retried.output.find("Browse the catalogue"), std::string::npos);
  EXPECT_EQ(readJson(home.run({"list", "--json"}).output).array()->size(), 2U);
}

TEST(EverydayCommands, NamesAreListedForShells) {
  const StandInHome home;
  home.startApp();
  EXPECT_EQ(home.run({"names", "projects"}).output, "Corner Shop\nTrail Log\n");
  EXPECT_EQ(home.run({"names", "suites", "Trail Log"}).output, "Smoke\n");
  EXPECT_EQ(home.run({"names", "tests", ""}).output.substr(0, 29),
            "Browse the catalogue\nSign in\n");
  EXPECT_EQ(home.run({"names", "requests"}).output, "last\n");
}

}  // namespace
}  // namespace corvane::testing
