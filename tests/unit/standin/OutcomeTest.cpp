#include <gmock/gmock.h>

#include <algorithm>

#include "tests/unit/standin/StandInFixture.h"

namespace corvane::standin {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using Kind = TestOutcome::Kind;

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
}  // namespace corvane::standin
