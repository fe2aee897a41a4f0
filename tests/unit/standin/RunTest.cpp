#include <gmock/gmock.h>

#include <algorithm>

#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Kind = TestOutcome::Kind;
using Params = std::map<std::string, std::string>;
using Target = AgentRunRequest::Target;
using namespace std::chrono_literals;

class RunTest : public StandInFixture {
 protected:
  void SetUp() override { start(); }

  static std::vector<std::string> statuses(const std::vector<AgentRunResult>& versions) {
    std::vector<std::string> statuses;
    for (const auto& version : versions) {
      if (statuses.empty() || statuses.back() != version.status) statuses.push_back(version.status);
    }
    return statuses;
  }
};

TEST_F(RunTest, WalksFromReceivedOverTheBuildToPassed) {
  auto wanted = request({"Browse the catalogue"});
  wanted.buildFirst = true;
  const auto versions = follow(drop(wanted));
  EXPECT_THAT(statuses(versions), ElementsAre("received", "building", "running", "passed"));
  EXPECT_FALSE(fileExists(AgentRunRequest::fileURL(wanted.requestId, paths)));
}

TEST_F(RunTest, TheProjectsOwnSettingDecidesWhetherItBuilds) {
  auto wanted = request({"Browse the catalogue"});
  wanted.buildFirst.reset();
  EXPECT_THAT(statuses(follow(drop(wanted))), Contains("building"));

  wanted = request({"Record a walk"});
  wanted.projectName = "Trail Log";
  wanted.buildFirst.reset();
  EXPECT_THAT(statuses(follow(drop(wanted))), ElementsAre("received", "running", "passed"));
}

TEST_F(RunTest, CountsTheStepsUpAndTellsTheLastOne) {
  std::vector<std::int64_t> counted;
  for (const auto& version : follow(drop({"Browse the catalogue"}))) {
    if (!version.progress) continue;
    EXPECT_EQ(version.progress->totalSteps, 5);
    counted.push_back(version.progress->currentStep);
    EXPECT_EQ(version.progress->lastStepStatus.has_value(), counted.size() > 1);
    if (counted.size() == 2) {
      EXPECT_EQ(version.progress->lastStepTitle, "WAIT TO LOAD");
      EXPECT_EQ(version.progress->lastStepStatus, "passed");
    }
  }
  EXPECT_THAT(counted, ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(RunTest, TellsTheWholeOutcomeAtTheEnd) {
  const auto last = finalResult(drop({"Browse the catalogue"}));
  EXPECT_EQ(last.source, "run_test");
  EXPECT_EQ(last.projectName, "Corner Shop");
  EXPECT_EQ(last.platform, "iOS");
  EXPECT_EQ(last.message, "1 of 1 test passed.");
  EXPECT_FALSE(last.progress);
  EXPECT_EQ(last.appUnderTest.value().bundleId, "com.example.cornershop");
  EXPECT_EQ(last.creditsSpent, 2.5);
  EXPECT_EQ(last.creditBalance, 497.5);
  EXPECT_EQ(last.summary.value().tests, 1);
  EXPECT_EQ(last.summary->testsPassed, 1);
  EXPECT_DOUBLE_EQ(last.summary->durationSeconds, 2.0);
  const auto& steps = last.tests.value().at(0).steps;
  ASSERT_EQ(steps.size(), 5U);
  EXPECT_EQ(steps[3].index, 3);
  EXPECT_EQ(steps[3].title, "TAP");
  EXPECT_EQ(steps[3].description, "Tap \"Kitchen\"");
  EXPECT_EQ(steps[3].status, "passed");
  EXPECT_EQ(steps[3].durationSeconds, 0.4);
}

TEST_F(RunTest, ASuiteRunsItsTestsInOrder) {
  auto wanted = request({});
  wanted.target.choice = Target::SuiteByName{"Purchase"};
  const auto last = finalResult(drop(wanted));
  std::vector<std::string> names;
  for (const auto& test : last.tests.value()) names.push_back(test.testName + " " + test.status);
  EXPECT_THAT(names, ElementsAre("Add to cart and remove passed", "Redeem a voucher failed",
                                 "Check out as guest passed"));
  EXPECT_EQ(last.status, "failed");
  EXPECT_EQ(last.summary.value().testsPassed, 2);
}

TEST_F(RunTest, ARunOfEverythingNeedsTheParametersOfItsTests) {
  auto wanted = request({});
  wanted.target.choice = Target::AllSuites{};
  const auto blocked = finalResult(drop(wanted));
  EXPECT_EQ(blocked.status, "blocked");
  EXPECT_EQ(blocked.blocked.value().code, "missingParameters");
  EXPECT_THAT(blocked.blocked->message, HasSubstr("'Sign in'"));
  EXPECT_THAT(blocked.blocked->message, HasSubstr("'username', 'password'"));

  wanted.requestId = makeRequestId();
  wanted.params = Params{{"username", "ada@example.com"}, {"password", "secret"}};
  const auto ran = finalResult(drop(wanted));
  EXPECT_EQ(ran.summary.value().tests, 6);
  EXPECT_EQ(ran.tests.value().at(1).steps.at(2).description, "ada@example.com");
}

TEST_F(RunTest, ParametersAreFilledInWhenAllAreGivenOnly) {
  auto wanted = request({"Sign in"});
  wanted.params = Params{{"username", "ada"}};
  EXPECT_THAT(finalResult(drop(wanted)).blocked.value().message, HasSubstr("'password'."));
}

TEST_F(RunTest, UnknownNamesAreAnsweredWithWhatThereIs) {
  auto wanted = request({"Browse the catalog"});
  const auto noTest = finalResult(drop(wanted));
  EXPECT_EQ(noTest.status, "error");
  EXPECT_THAT(noTest.message.value(), HasSubstr("'Browse the catalog'. Tests: 'Browse the catalo"));

  wanted = request({});
  wanted.target.choice = Target::SuiteByName{"Nightly"};
  EXPECT_THAT(finalResult(drop(wanted)).message.value(),
              HasSubstr("no suite named 'Nightly'. Suites: 'Smoke', 'Purchase'."));

  wanted = request({"Sign in"});
  wanted.projectName = "Corner shop";
  EXPECT_THAT(finalResult(drop(wanted)).message.value(),
              HasSubstr("'Corner shop'. Projects: 'Corner Shop', 'Trail Log'."));

  EXPECT_EQ(finalResult(drop(std::vector<std::string>{})).message, "There are no tests to run.");
}

TEST_F(RunTest, ThePlatformIsTheRequestsOrTheProjects) {
  auto wanted = request({"Record a walk"});
  wanted.projectName = "Trail Log";
  const auto onAndroid = finalResult(drop(wanted));
  EXPECT_EQ(onAndroid.platform, "android");
  EXPECT_EQ(onAndroid.appUnderTest.value().bundleId, "com.example.traillog");

  wanted.requestId = makeRequestId();
  wanted.targetPlatform = "ios";
  const auto onIos = finalResult(drop(wanted));
  EXPECT_EQ(onIos.status, "blocked");
  EXPECT_EQ(onIos.blocked.value().code, "platformNotConfigured");

  wanted.requestId = makeRequestId();
  wanted.targetPlatform = "tvOS";
  EXPECT_EQ(finalResult(drop(wanted)).status, "error");
}

const char* const cart = "Add to cart and remove";

class OutcomeTest : public StandInFixture {
 protected:
  static std::vector<std::string> stepStatuses(const AgentRunResult& result) {
    std::vector<std::string> statuses;
    for (const auto& step : result.tests.value().at(0).steps) statuses.push_back(step.status);
    return statuses;
  }
};

TEST_F(OutcomeTest, TheFirstWorkspaceShowsADefectOfTheApp) {
  start();
  const auto last = finalResult(drop({"Redeem a voucher"}));
  EXPECT_EQ(last.status, "failed");
  EXPECT_EQ(last.message, "0 of 1 test passed. 'Redeem a voucher' failed.");
  EXPECT_THAT(last.tests.value().at(0).steps.back().failureReason.value(), HasSubstr("defect"));
  // Words that would make the failure look like something of the system that covers the screen.
  auto text = asciiLowercase(readFile(AgentRunResult::fileURL(last.requestId, paths)));
  for (const auto* word : {"permission", "dialog", "prompt", "sheet", "alert", "allow",
                           "notification", "rating", "pop-up", "popup"}) {
    EXPECT_EQ(text.find(word), std::string::npos) << word;
  }
}

TEST_F(OutcomeTest, TheFirstWorkspaceShowsAHealedStep) {
  start();
  const auto last = finalResult(drop({"Search and filter"}));
  EXPECT_EQ(last.status, "passed");
  EXPECT_THAT(stepStatuses(last),
              ElementsAre("passed", "passed", "passed", "healed", "passed", "passed", "passed"));
  EXPECT_TRUE(last.tests->at(0).steps[3].healedByAI);
  EXPECT_FALSE(last.tests->at(0).steps[2].healedByAI);
  EXPECT_THAT(last.message.value(), HasSubstr("adapted at step index 3: "));
  EXPECT_EQ(last.creditsSpent, 4.5);
}

TEST_F(OutcomeTest, SettingsComeBeforeTheFirstOutcomes) {
  setOutcome("Redeem a voucher", Kind::passed);
  start();
  EXPECT_EQ(finalResult(drop({"Redeem a voucher"})).status, "passed");
}

TEST_F(OutcomeTest, AFailedStepSkipsTheRestOfItsTest) {
  auto& outcome = setOutcome(cart, Kind::failed);
  outcome.failedStep = 1;
  outcome.failureReason = "Grey.";
  start();
  const auto last = finalResult(drop({cart, "Browse the catalogue"}));
  EXPECT_EQ(last.status, "failed");
  EXPECT_THAT(stepStatuses(last), ElementsAre("passed", "failed", "skipped", "skipped", "skipped",
                                              "skipped", "skipped"));
  EXPECT_EQ(last.tests->at(0).steps[1].failureReason, "Grey.");
  EXPECT_FALSE(last.tests->at(0).steps[2].durationSeconds);
  EXPECT_EQ(last.tests->at(1).status, "passed");
}

TEST_F(OutcomeTest, AFailedStepPastTheEndIsTheLastStep) {
  setOutcome(cart, Kind::failed).failedStep = 99;
  start();
  EXPECT_EQ(stepStatuses(finalResult(drop({cart}))).back(), "failed");
}

TEST_F(OutcomeTest, AWarningIsNeitherPassedNorFailed) {
  setOutcome(cart, Kind::warning);
  start();
  const auto last = finalResult(drop({cart}));
  EXPECT_EQ(last.status, "warning");
  EXPECT_EQ(last.tests.value().at(0).status, "warning");
  EXPECT_EQ(last.summary.value().testsPassed, 0);
}

// Fails when a warning hides that another test has failed.
TEST_F(OutcomeTest, AFailureWeighsMoreThanAWarning) {
  setOutcome(cart, Kind::warning);
  setOutcome("Browse the catalogue", Kind::failed);
  start();
  EXPECT_EQ(finalResult(drop({cart, "Browse the catalogue"})).status, "failed");
  EXPECT_EQ(finalResult(drop({"Browse the catalogue", cart})).status, "failed");
}

TEST_F(OutcomeTest, ABlockedTestEndsTheRunWithWhatRanBefore) {
  auto& outcome = setOutcome(cart, Kind::blocked);
  outcome.blockedCode = "budgetExceeded";
  outcome.blockedMessage = "No credits left.";
  start();
  const auto last = finalResult(drop({"Browse the catalogue", cart, "Search and filter"}));
  EXPECT_EQ(last.status, "blocked");
  EXPECT_EQ(last.blocked.value().code, "budgetExceeded");
  EXPECT_EQ(last.blocked->message, "No credits left.");
  EXPECT_EQ(last.tests.value().size(), 1U);
}

TEST_F(OutcomeTest, ABuildFailsOnlyWhenThereIsOne) {
  setOutcome(cart, Kind::buildFailed);
  start();
  auto wanted = request({cart});
  EXPECT_EQ(finalResult(drop(wanted)).status, "passed");
  wanted.requestId = makeRequestId();
  wanted.buildFirst = true;
  const auto last = finalResult(drop(wanted));
  EXPECT_EQ(last.status, "buildFailed");
  EXPECT_THAT(last.message.value(), HasSubstr("does not build"));
  EXPECT_FALSE(last.tests);
}

TEST_F(OutcomeTest, AHeldRunStaysAtItsFirstStepAndBeats) {
  setOutcome(cart, Kind::hold);
  start();
  const auto id = drop({cart});
  pass(1h);
  const auto held = result(id);
  EXPECT_EQ(held.status, "running");
  EXPECT_EQ(held.progress.value().currentStep, 1);
  EXPECT_LE(clock.date() - held.updatedAt, 16s);
}

TEST_F(OutcomeTest, AWedgedRunFallsSilentInTheMiddle) {
  setOutcome(cart, Kind::wedged);
  start();
  const auto id = drop({cart});
  pass(1h);
  const auto wedged = result(id);
  EXPECT_EQ(wedged.status, "running");
  EXPECT_EQ(wedged.progress.value().currentStep, 4);
  EXPECT_GT(clock.date() - wedged.updatedAt, 59min);
  dropCancelMarker(id);
  EXPECT_EQ(finalResult(id).status, "cancelled");
}

TEST_F(OutcomeTest, ACrashLeavesTheResultUnfinished) {
  setOutcome(cart, Kind::crash);
  start();
  const auto id = drop({cart});
  bool lives = true;
  for (int tick = 0; lives && tick < 1000; ++tick) {
    clock.advance(100ms);
    lives = standIn->tick();
  }
  EXPECT_FALSE(lives);
  EXPECT_EQ(status(id), "running");
}

TEST_F(OutcomeTest, ATestWithoutStepsPasses) {
  start();
  auto workspace = AgentContext::read(paths.agentContextFile());
  for (auto& each : workspace.projects[0].tests) each.steps.clear();
  workspace.write(paths);
  start();
  const auto last = finalResult(drop({cart, "Redeem a voucher"}));
  EXPECT_EQ(last.status, "passed");
  EXPECT_EQ(last.tests.value().size(), 2U);
}

}  // namespace
}  // namespace corvane::testing
