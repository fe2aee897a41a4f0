#include <gmock/gmock.h>

#include "CorvaneCore/workspace/AgentActivity.h"
#include "corvane_standin/exploration/ExploreJob.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using namespace std::chrono_literals;

const char* const twoGoals =
    "Cart: tap the tab \"Cart\", assert the cart is shown\n"
    "Voucher: reuse Cart, tap \"Add voucher\", type $code, assert the voucher is shown";

class ExploreTest : public StandInFixture {
 protected:
  void SetUp() override { start(); }

  [[nodiscard]] AgentExploreRequest exploration(const std::string& goal) const {
    AgentExploreRequest request;
    request.requestId = makeRequestId();
    request.projectName = "Trail Log";
    request.goal = goal;
    request.createdAt = clock.date();
    return request;
  }
};

TEST_F(ExploreTest, AuthorsOneTestPerGoal) {
  const auto versions = follow(drop(exploration(twoGoals)));
  std::vector<std::string> activity;
  for (const auto& version : versions) {
    if (version.status == "authoring") activity.push_back(version.message.value());
  }
  EXPECT_THAT(activity, ElementsAre("Goal 1 of 2, 'Cart': Tap the tab \"Cart\"",
                                    "Goal 1 of 2, 'Cart': The cart is shown",
                                    "Goal 2 of 2, 'Voucher': Run the test \"Cart\"",
                                    "Goal 2 of 2, 'Voucher': Tap \"Add voucher\"",
                                    "Goal 2 of 2, 'Voucher': $code",
                                    "Goal 2 of 2, 'Voucher': The voucher is shown"));
  const auto& last = versions.back();
  EXPECT_EQ(last.status, "authored");
  EXPECT_EQ(last.source, "explore_flow");
  EXPECT_EQ(last.platform, "android");
  EXPECT_EQ(last.message, "Explored. Authored: 'Cart', 'Voucher'.");
  EXPECT_EQ(last.creditsSpent, 90);
  EXPECT_EQ(last.creditBalance, 410);
  EXPECT_FALSE(last.authoredTest);
  const auto cart = publishedTest("Cart");
  const auto voucher = publishedTest("Voucher");
  const auto& authored = last.authoredTests.value();
  ASSERT_EQ(authored.size(), 2U);
  EXPECT_EQ(authored[0].testId, cart.id);
  EXPECT_EQ(authored[0].stepCount, 2);
  EXPECT_EQ(authored[1].testId, voucher.id);
  EXPECT_EQ(authored[1].testName, "Voucher");
  EXPECT_EQ(authored[1].stepCount, 4);
  EXPECT_FALSE(authored[1].completionPercent);
  EXPECT_THAT(stepLines(voucher.steps),
              ElementsAre("runTest: Run the test \"Cart\"", "tap: Tap \"Add voucher\"",
                          "input: $code", "visualAssert: The voucher is shown"));
  EXPECT_THAT(voucher.parameterNames.value(), ElementsAre("code"));
  EXPECT_EQ(voucher.verified, false);
}

TEST_F(ExploreTest, ChartsWhatItExplored) {
  (void)finalResult(drop(exploration(twoGoals)));
  const auto project = publishedProject("Trail Log");
  EXPECT_EQ(project.worldMap,
            "Paths explored\n"
            "  Cart: Tap the tab \"Cart\" --> The cart is shown\n"
            "  Voucher: Run the test \"Cart\" --> Tap \"Add voucher\" --> $code --> The voucher is "
            "shown");
  EXPECT_EQ(project.suites.back().name, "Agent");
  EXPECT_EQ(project.suites.back().testIds.size(), 2U);
}

TEST_F(ExploreTest, TheTestOfOneGoalCanBeNamed) {
  auto request = exploration("Cart: tap \"Cart\", assert it is shown");
  request.testName = "Look into the cart";
  const auto result = finalResult(drop(request));
  EXPECT_EQ(result.authoredTest.value().testName, "Look into the cart");
  EXPECT_EQ(result.authoredTests.value().size(), 1U);
}

TEST_F(ExploreTest, IsLiveInTheActivityFile) {
  const auto id = drop(exploration(twoGoals));
  pass(1s);
  const auto activity = AgentActivity::read(paths).value();
  EXPECT_EQ(activity.active.value().requestId, id);
  EXPECT_EQ(activity.active.value().kind, "exploration");
  EXPECT_TRUE(activity.authoringActive);
  (void)finalResult(id);
  ASSERT_TRUE(standIn->tick());
  EXPECT_FALSE(AgentActivity::read(paths).value().authoringActive);
}

TEST_F(ExploreTest, ABudgetThatRunsOutKeepsWhatThereIs) {
  auto request = exploration(twoGoals);
  request.maxCreditSpend = 50;
  const auto result = finalResult(drop(request));
  EXPECT_EQ(result.status, "warning");
  EXPECT_EQ(result.message,
            "Stopped at the budget of 50 credits. Authored: 'Cart', 'Voucher' (partial, 25%).");
  EXPECT_EQ(result.creditsSpent, 45);
  EXPECT_EQ(result.authoredTests.value().at(1).completionPercent, 25);
  EXPECT_EQ(publishedTest("Voucher").steps.size(), 1U);
}

// Fails when a budget has to be more than a step costs.
TEST_F(ExploreTest, ABudgetMayBeSpentToTheLastCredit) {
  auto request = exploration(twoGoals);
  request.maxCreditSpend = 45;
  const auto result = finalResult(drop(request));
  EXPECT_EQ(result.status, "warning");
  EXPECT_EQ(result.creditsSpent, 45);
}

TEST_F(ExploreTest, ABudgetForLessThanAStepBlocks) {
  auto request = exploration(twoGoals);
  request.maxCreditSpend = 14;
  const auto result = finalResult(drop(request));
  EXPECT_EQ(result.status, "blocked");
  EXPECT_EQ(result.blocked.value().code, "budgetExceeded");
  EXPECT_EQ(result.message, "Stopped at the budget of 14 credits. Nothing was authored yet.");
  EXPECT_EQ(result.creditsSpent, 0);
  EXPECT_FALSE(result.authoredTests);
}

TEST_F(ExploreTest, WithoutCreditsItIsBlocked) {
  settings.creditBalance = 10;
  start();
  const auto result = finalResult(drop(exploration(twoGoals)));
  EXPECT_EQ(result.status, "blocked");
  EXPECT_EQ(result.blocked.value().code, "insufficientCredits");
}

TEST_F(ExploreTest, BootstrapsANewProject) {
  auto request = exploration("Cart: tap \"Cart\", assert it is shown");
  request.projectName = "New Shop";
  request.iosProjectPath = "/src/new-shop";
  const auto refused = finalResult(drop(request));
  EXPECT_EQ(refused.status, "blocked");
  EXPECT_EQ(refused.blocked.value().code, "missingIdentity");

  request.requestId = makeRequestId();
  request.bundleIdentifier = "com.example.newshop";
  const auto versions = follow(drop(request));
  std::vector<std::string> statuses;
  for (const auto& version : versions) statuses.push_back(version.status);
  EXPECT_THAT(statuses, ElementsAre("received", "building", "authoring", "authoring", "authored"));
  EXPECT_EQ(versions.back().appUnderTest.value().bundleId, "com.example.newshop");
  const auto project = publishedProject("New Shop");
  EXPECT_EQ(project.platform, "iOS");
  EXPECT_EQ(project.buildBeforeScheduledRuns, true);
  EXPECT_EQ(project.iosBuildConfigured, true);
  EXPECT_EQ(project.androidBuildConfigured, false);
  EXPECT_EQ(project.tests.size(), 1U);
  EXPECT_EQ(published().currentProjectName, "New Shop");
}

TEST_F(ExploreTest, ResumesFromAPrefix) {
  auto request = exploration("Units: tap \"Units\", assert they are listed");
  request.resumeFromTestName = "Record a walk";
  EXPECT_EQ(finalResult(drop(request)).status, "authored");
  EXPECT_EQ(stepLines(publishedTest("Units").steps).front(),
            "runTest: Run the test \"Record a walk\"");

  request.requestId = makeRequestId();
  request.resumeFromTestId = publishedTest("Switch to miles").id;
  EXPECT_EQ(finalResult(drop(request)).status, "authored");
  EXPECT_EQ(stepLines(publishedTest("Units").steps).front(),
            "runTest: Run the test \"Switch to miles\"");

  request.requestId = makeRequestId();
  request.resumeFromTestId = "nowhere";
  EXPECT_EQ(finalResult(drop(request)).status, "error");
}

TEST_F(ExploreTest, ACancelledSessionKeepsItsWholeTests) {
  const auto id = drop(exploration(twoGoals));
  pass(1500ms);
  ASSERT_EQ(status(id), "authoring");
  dropCancelMarker(id);
  const auto result = finalResult(id);
  EXPECT_EQ(result.status, "cancelled");
  EXPECT_EQ(result.message, "The exploration was cancelled. Authored: 'Cart'.");
  EXPECT_EQ(result.authoredTests.value().size(), 1U);
  EXPECT_EQ(publishedProject("Trail Log").tests.size(), 3U);
}

std::vector<std::string> names(const std::vector<Goal>& goals) {
  std::vector<std::string> list;
  for (const auto& goal : goals) list.push_back(goal.name);
  return list;
}

std::vector<std::string> stepsFor(const std::string& text) {
  std::vector<std::string> lines;
  for (const auto& step : stepsToward(parseGoals(text).front())) {
    lines.push_back(step.type + ": " + step.description);
  }
  return lines;
}

TEST(GoalMapTest, EveryLineIsAGoal) {
  EXPECT_THAT(names(parseGoals("Startup suite:\n"
                               "1. Signed in: pass the login\n"
                               "\n"
                               "  2) Tabs: visit each\n"
                               "- Chat: open it\n"
                               "* Help\n")),
              ElementsAre("Signed in", "Tabs", "Chat", "Help"));
}

TEST(GoalMapTest, AGoalWithoutALabelIsNamedAfterItsFirstWords) {
  EXPECT_THAT(names(parseGoals("open the cart and see that it is empty")),
              ElementsAre("Open the cart and see that"));
  EXPECT_THAT(names(parseGoals("tap \"Shop: all\", assert it opens")),
              ElementsAre("Tap \"Shop: all\""));
}

TEST(GoalMapTest, ALoneHeadingIsAGoal) {
  EXPECT_THAT(names(parseGoals("Open the cart:")), ElementsAre("Open the cart"));
  EXPECT_TRUE(parseGoals(" \n ").empty());
}

TEST(GoalMapTest, ClausesAreNotCutInsideQuotes) {
  EXPECT_THAT(parseGoals("Cart: tap \"Cart, then more\", then scroll down; see it.")[0].clauses,
              ElementsAre("tap \"Cart, then more\"", "scroll down", "see it"));
}

TEST(GoalStepsTest, AClauseBecomesAStepByItsFirstWord) {
  EXPECT_THAT(stepsFor("Address: tap the field \"Street\", type $street, enter \"Rome\" as the "
                       "city, swipe up, drag the handle, wait for the map, "
                       "verify that the pin is shown"),
              ElementsAre("tap: Tap the field \"Street\"", "input: $street", "input: Rome",
                          "scroll: Swipe up", "drag: Drag the handle",
                          "waitToLoad: Wait for the map", "visualAssert: The pin is shown"));
}

TEST(GoalStepsTest, TheLastStepLooks) {
  EXPECT_THAT(stepsFor("Cart: tap \"Cart\""),
              ElementsAre("tap: Tap \"Cart\"",
                          "visualAssert: The screen shows that this is reached: Cart"));
}

}  // namespace
}  // namespace corvane::testing
