#include <gmock/gmock.h>

#include <algorithm>

#include "corvane_standin/story/ScreenStory.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Kind = Element::Kind;
using Part = Target::Part;

PlannedTest planned(std::vector<std::pair<const char*, const char*>> steps) {
  PlannedTest test;
  for (const auto& [type, description] : steps) test.steps.push_back({"", description, type});
  return test;
}

ScreenStory storyOf(const PlannedTest& test) {
  return {test, "Corner Shop", "iOS"};
}

/// A test of the first workspace, with what settles how it turns out.
PlannedTest firstTest(const std::string& name) {
  PlannedTest test;
  for (const auto& project : firstWorkspace().projects) {
    for (const auto& each : project.tests) {
      if (each.name != name) continue;
      for (const auto& step : each.steps) test.steps.push_back({"", step.description, step.type});
    }
  }
  const auto outcomes = firstOutcomes();
  if (const auto known = outcomes.find(name); known != outcomes.end()) test.outcome = known->second;
  test.turningStep = static_cast<std::size_t>(test.outcome.failedStep.value_or(0));
  return test;
}

std::vector<std::string> labels(const Screen& screen, Kind kind) {
  std::vector<std::string> found;
  for (const auto& element : screen.elements) {
    if (element.kind == kind) found.push_back(element.label);
  }
  return found;
}

const Element& targetElement(const Screen& screen) {
  EXPECT_TRUE(screen.target && screen.target->part == Part::element);
  return screen.elements.at(screen.target.value().index);
}

std::string amount(const Screen& screen, std::string_view label) {
  for (const auto& element : screen.elements) {
    if (element.kind == Kind::amount && element.label == label) return element.detail;
  }
  return {};
}

TEST(ScreenStoryTest, AButtonThatIsTappedIsThere) {
  const auto test = planned({{"tap", "Tap the button \"Frobnicate\""}});
  const auto screen = storyOf(test).screenAt(0);
  EXPECT_EQ(targetElement(screen).label, "Frobnicate");
  EXPECT_EQ(targetElement(screen).kind, Kind::button);
}

TEST(ScreenStoryTest, TheEndOfAStepIsTheBeginningOfTheNext) {
  const auto test =
      planned({{"tap", "Tap the tab \"Account\""}, {"tap", "Tap the field \"E-mail\""}});
  const auto story = storyOf(test);
  EXPECT_EQ(story.screenAt(0).title, "Corner Shop");
  EXPECT_EQ(story.screenAt(0).target.value().part, Part::tab);
  EXPECT_EQ(story.screenAt(1).title, "Account");
  EXPECT_EQ(story.screenAt(1).selectedTab, 2U);
  EXPECT_EQ(story.screenAt(2).title, "Account");
  EXPECT_TRUE(story.screenAt(2).keyboard);
}

TEST(ScreenStoryTest, WhatIsTypedIsInItsField) {
  const auto test = planned({{"tap", "Tap the field \"E-mail\""},
                             {"input", "ada@example.com"},
                             {"tap", "Tap the field \"Password\""},
                             {"input", "geheim"},
                             {"tap", "Tap the button \"Sign in\""}});
  const auto screen = storyOf(test).screenAt(4);
  EXPECT_THAT(labels(screen, Kind::field), ::testing::ElementsAre("E-mail", "Password"));
  EXPECT_EQ(screen.elements[0].detail, "ada@example.com");
  EXPECT_EQ(screen.elements[1].detail, "••••••");
  EXPECT_FALSE(screen.elements[0].strong);
  EXPECT_TRUE(screen.elements[1].strong);
}

TEST(ScreenStoryTest, AVoucherIsAskedForInADialog) {
  const auto story = storyOf(firstTest("Redeem a voucher"));
  EXPECT_EQ(targetElement(story.screenAt(1)).label, "Add voucher");
  const auto asked = story.screenAt(3);
  EXPECT_EQ(asked.dialog.value().title, "Add voucher");
  EXPECT_EQ(asked.dialog->field, "SPRING10");
  EXPECT_EQ(asked.dialog->buttons, (std::vector<std::string>{"Cancel", "Redeem"}));
  EXPECT_EQ(asked.target.value().part, Part::dialogButton);
  EXPECT_FALSE(story.screenAt(4).dialog);
}

TEST(ScreenStoryTest, TheDefectThatATestFindsIsOnTheScreen) {
  auto test = firstTest("Redeem a voucher");
  const auto defective = storyOf(test).screenAt(5);
  EXPECT_EQ(amount(defective, "Subtotal"), "64.00");
  EXPECT_EQ(amount(defective, "Voucher SPRING10"), "−6.40");
  EXPECT_EQ(amount(defective, "Total"), "64.00");
  test.outcome = {};
  EXPECT_EQ(amount(storyOf(test).screenAt(5), "Total"), "57.60");
}

TEST(ScreenStoryTest, AHealedStepFindsTheOtherName) {
  EXPECT_EQ(targetElement(storyOf(firstTest("Search and filter")).screenAt(3)).label, "Refine");
}

TEST(ScreenStoryTest, SearchingLeavesWhatWasSearchedFor) {
  const auto story = storyOf(firstTest("Search and filter"));
  EXPECT_THAT(labels(story.screenAt(1), Kind::row), Contains("Enamel mug"));
  const auto found = labels(story.screenAt(3), Kind::row);
  EXPECT_THAT(found, Contains("Linen towel"));
  EXPECT_THAT(found, Not(Contains("Enamel mug")));
}

TEST(ScreenStoryTest, WhatIsMissingIsNotThere) {
  auto test = planned({{"tap", "Tap the button \"Save\""}});
  test.outcome.kind = TestOutcome::Kind::failed;
  const auto screen = storyOf(test).screenAt(0);
  EXPECT_FALSE(screen.target);
  EXPECT_THAT(labels(screen, Kind::button), Not(Contains("Save")));
}

TEST(ScreenStoryTest, AGreyButtonIsGrey) {
  auto test = planned({{"tap", "Tap the button \"Place order\""}});
  test.outcome.kind = TestOutcome::Kind::failed;
  test.outcome.failureReason = "\"Place order\" stayed grey.";
  EXPECT_FALSE(targetElement(storyOf(test).screenAt(0)).enabled);
}

TEST(ScreenStoryTest, ASwipeUncoversTheButton) {
  const auto story = storyOf(firstTest("Add to cart and remove"));
  const auto before = story.screenAt(4);
  EXPECT_EQ(targetElement(before).label, "Enamel mug");
  EXPECT_EQ(targetElement(before).swipeAction, "");
  EXPECT_EQ(targetElement(story.screenAt(5)).swipeAction, "Remove");
  EXPECT_THAT(labels(story.screenAt(6), Kind::notice), Contains("Your cart is empty"));
}

TEST(ScreenStoryTest, AnAppThatIsClosedIsOnTheHomeScreen) {
  const auto story = storyOf(firstTest("Check out as guest"));
  EXPECT_EQ(story.screenAt(1).place, Screen::Place::homeScreen);
  EXPECT_EQ(story.screenAt(2).place, Screen::Place::app);
  EXPECT_EQ(story.screenAt(2).title, "Corner Shop");
  EXPECT_EQ(story.screenAt(9).place, Screen::Place::homeScreen);
}

TEST(ScreenStoryTest, AnAppAboutWalksShowsWalks) {
  const ScreenStory story(firstTest("Switch to miles"), "Trail Log", "android");
  EXPECT_EQ(story.screenAt(0).phone, Screen::Phone::android);
  EXPECT_THAT(labels(story.screenAt(0), Kind::row), Contains("Lakeside loop"));
  EXPECT_TRUE(story.screenAt(3).elements.at(1).strong);
  EXPECT_EQ(story.screenAt(4).elements.at(1).detail, "4.8 mi");
}

TEST(ScreenStoryTest, EveryStepHasAScreenWhateverItSays) {
  PlannedTest test;
  for (const char* type : {"tap", "input", "visualAssert", "scroll", "builtIn", "delay",
                           "waitToLoad", "drag", "runTest", "userDefined", "reuseSteps", "newer"}) {
    for (const char* text : {"", "\"\"", "Tap", "{{APP_NAME}}", "the \"\" field", "Go Back",
                             "Fill ", "Drag the row \"A\" to the left edge", "Remove", "♞"}) {
      test.steps.push_back({"", text, type});
    }
  }
  const auto story = storyOf(test);
  for (std::size_t i = 0; i <= story.stepCount(); ++i) {
    const auto screen = story.screenAt(i);
    if (screen.target && screen.target->part == Part::element) {
      EXPECT_LT(screen.target->index, screen.elements.size());
    }
  }
  EXPECT_EQ(storyOf(PlannedTest()).screenAt(0).title, "Corner Shop");
}

TEST(TouchesTest, AScrollMovesTheFingerTheOtherWay) {
  const auto down = touchesOf(StepWords("scroll", "Scroll down to the end"), std::nullopt).at(0);
  EXPECT_GT(down.y, down.endY.value());
  const auto up = touchesOf(StepWords("scroll", "Scroll up"), std::nullopt).at(0);
  EXPECT_LT(up.y, up.endY.value());
}

TEST(TouchesTest, ADragFollowsItsWords) {
  const Rect row{0.1, 0.4, 0.8, 0.1};
  const auto left =
      touchesOf(StepWords("drag", "Drag the row \"Mug\" to the left edge"), row).at(0);
  EXPECT_GT(left.x, left.endX.value());
  EXPECT_EQ(left.y, left.endY.value());
  const auto handle =
      touchesOf(StepWords("drag", "Drag the right handle of \"Price\" to the middle"),
                Rect{0.8, 0.4, 0.05, 0.02})
          .at(0);
  EXPECT_EQ(handle.endX, 0.5);
}

TEST(TouchesTest, OnlyGesturesTouch) {
  const Rect area{0.1, 0.1, 0.2, 0.2};
  EXPECT_TRUE(touchesOf(StepWords("visualAssert", "The \"Mug\""), area).empty());
  EXPECT_TRUE(touchesOf(StepWords("input", "text"), area).empty());
  EXPECT_TRUE(touchesOf(StepWords("tap", "Tap \"Mug\""), std::nullopt).empty());
}

}  // namespace
}  // namespace corvane::testing
