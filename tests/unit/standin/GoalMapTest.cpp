#include <gmock/gmock.h>

#include "corvane_standin/exploration/GoalMap.h"
#include "corvane_standin/exploration/GoalSteps.h"

namespace corvane::standin {
namespace {

using testing::ElementsAre;

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
}  // namespace corvane::standin
