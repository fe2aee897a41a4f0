#include <gmock/gmock.h>

#include <algorithm>

#include "corvane_standin/capture/ScreenStory.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::Contains;
using ::testing::IsSupersetOf;
using ::testing::Not;
using Kind = Element::Kind;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

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
  EXPECT_TRUE(screen.target);
  return screen.elements.at(screen.target.value());
}

Element element(const Screen& screen, std::string_view label) {
  const auto found = std::ranges::find(screen.elements, label, &Element::label);
  return found == screen.elements.end() ? Element() : *found;
}

std::string selectedTabs(const Screen& screen) {
  std::string selected;
  for (const auto& each : screen.elements) {
    if (each.kind == Kind::tab && each.strong) selected += each.label;
  }
  return selected;
}

TEST(ScreenStoryTest, AButtonThatIsTappedIsThere) {
  const auto test = planned({{"tap", "Tap the button \"Frobnicate\""}});
  const auto screen = storyOf(test).screens.at(0);
  EXPECT_EQ(targetElement(screen).label, "Frobnicate");
  EXPECT_EQ(targetElement(screen).kind, Kind::button);
}

TEST(ScreenStoryTest, TheEndOfAStepIsTheBeginningOfTheNext) {
  const auto test =
      planned({{"tap", "Tap the tab \"Account\""}, {"tap", "Tap the field \"E-mail\""}});
  const auto story = storyOf(test);
  EXPECT_EQ(story.screens.at(0).title, "Corner Shop");
  EXPECT_EQ(targetElement(story.screens.at(0)).kind, Kind::tab);
  EXPECT_EQ(story.screens.at(1).title, "Account");
  EXPECT_EQ(selectedTabs(story.screens.at(1)), "Account");
  EXPECT_EQ(story.screens.at(2).title, "Account");
  EXPECT_TRUE(element(story.screens.at(2), "E-mail").strong);
}

TEST(ScreenStoryTest, WhatIsTypedIsInItsField) {
  const auto test = planned({{"tap", "Tap the field \"E-mail\""},
                             {"input", "ada@example.com"},
                             {"tap", "Tap the field \"Password\""},
                             {"input", "geheim"},
                             {"tap", "Tap the button \"Sign in\""}});
  const auto screen = storyOf(test).screens.at(4);
  EXPECT_EQ(element(screen, "E-mail").detail, "ada@example.com");
  EXPECT_EQ(element(screen, "Password").detail, "••••••");
  EXPECT_FALSE(element(screen, "E-mail").strong);
  EXPECT_TRUE(element(screen, "Password").strong);
}

TEST(ScreenStoryTest, AVoucherIsAskedForInADialog) {
  const auto story = storyOf(firstTest("Redeem a voucher"));
  EXPECT_EQ(targetElement(story.screens.at(1)).label, "Add voucher");
  const auto asked = story.screens.at(3);
  EXPECT_THAT(labels(asked, Kind::dialog), ElementsAre("Add voucher"));
  EXPECT_EQ(element(asked, "Code").detail, "SPRING10");
  EXPECT_THAT(labels(asked, Kind::dialogButton), ElementsAre("Cancel", "Redeem"));
  EXPECT_EQ(targetElement(asked).kind, Kind::dialogButton);
  EXPECT_FALSE(story.screens.at(4).has(Kind::dialog));
}

TEST(ScreenStoryTest, TheDefectThatATestFindsIsOnTheScreen) {
  auto test = firstTest("Redeem a voucher");
  const auto defective = storyOf(test).screens.at(5);
  EXPECT_EQ(element(defective, "Subtotal").detail, "64.00");
  EXPECT_EQ(element(defective, "Voucher SPRING10").detail, "−6.40");
  EXPECT_EQ(element(defective, "Total").detail, "64.00");
  test.outcome = {};
  EXPECT_EQ(element(storyOf(test).screens.at(5), "Total").detail, "57.60");
}

TEST(ScreenStoryTest, AHealedStepFindsTheOtherName) {
  EXPECT_EQ(targetElement(storyOf(firstTest("Search and filter")).screens.at(3)).label, "Refine");
}

TEST(ScreenStoryTest, SearchingLeavesWhatWasSearchedFor) {
  const auto story = storyOf(firstTest("Search and filter"));
  EXPECT_THAT(labels(story.screens.at(1), Kind::item), Contains("Enamel mug"));
  const auto found = labels(story.screens.at(3), Kind::item);
  EXPECT_THAT(found, Contains("Linen towel"));
  EXPECT_THAT(found, Not(Contains("Enamel mug")));
}

TEST(ScreenStoryTest, APageShowsWhatWasTappedAsItsTitle) {
  const auto test = planned({{"tap", "Tap the product \"Willow basket\""},
                             {"tap", "Tap \"Back\""},
                             {"tap", "Tap the row \"Garden\""},
                             {"tap", "Tap the tab \"Favourites\""}});
  const auto story = storyOf(test);
  EXPECT_EQ(targetElement(story.screens.at(0)).kind, Kind::card);
  EXPECT_EQ(story.screens.at(1).title, "Willow basket");
  EXPECT_EQ(element(story.screens.at(1), "Price").detail, "42.00");
  EXPECT_EQ(story.screens.at(2).title, "Corner Shop");
  EXPECT_EQ(story.screens.at(3).title, "Garden");
  EXPECT_THAT(labels(story.screens.at(3), Kind::item),
              ElementsAre("Willow basket", "Herb planter"));
  EXPECT_EQ(story.screens.at(4).title, "Favourites");
  EXPECT_EQ(selectedTabs(story.screens.at(4)), "Favourites");
}

TEST(ScreenStoryTest, WhatNoPageKnowsStaysOnThePage) {
  const auto test = planned({{"tap", "Tap the tab \"Cart\""},
                             {"tap", "Tap \"Frobnicate\""},
                             {"visualAssert", "The text \"Frobnicated\" is shown"}});
  const auto story = storyOf(test);
  EXPECT_EQ(story.screens.at(2).title, "Cart");
  EXPECT_THAT(labels(story.screens.at(2), Kind::button), Contains("Frobnicate"));
  EXPECT_EQ(targetElement(story.screens.at(2)).label, "Frobnicated");
}

TEST(ScreenStoryTest, ADialogIsClosedByAButtonThatLeadsNowhere) {
  const auto test = planned({{"reuseSteps", "Steps up to the cart"},
                             {"tap", "Tap \"Add voucher\""},
                             {"tap", "Tap \"Cancel\""}});
  const auto story = storyOf(test);
  EXPECT_TRUE(story.screens.at(2).has(Kind::dialog));
  EXPECT_FALSE(story.screens.at(3).has(Kind::dialog));
  EXPECT_EQ(story.screens.at(3).title, "Cart");
}

TEST(ScreenStoryTest, AWalkThatIsSavedIsInTheList) {
  const ScreenStory story(firstTest("Record a walk"), "Trail Log", "android");
  EXPECT_THAT(labels(story.screens.at(0), Kind::item), Not(Contains("Today's walk")));
  EXPECT_EQ(labels(story.screens.at(4), Kind::item).at(0), "Today's walk");
}

TEST(ScreenStoryTest, ABuildingBlockFillsTheFields) {
  const auto story = storyOf(firstTest("Check out as guest"));
  EXPECT_EQ(element(story.screens.at(4), "Street").detail, "");
  EXPECT_EQ(element(story.screens.at(5), "Street").detail, "12 Harbour Street");
}

TEST(ScreenStoryTest, WhatIsMissingIsNotThere) {
  auto test = planned({{"tap", "Tap the button \"Save\""}});
  test.outcome.kind = TestOutcome::Kind::failed;
  const auto screen = storyOf(test).screens.at(0);
  EXPECT_FALSE(screen.target);
  EXPECT_THAT(labels(screen, Kind::button), Not(Contains("Save")));
}

TEST(ScreenStoryTest, AGreyButtonIsGrey) {
  auto test = planned({{"tap", "Tap the button \"Place order\""}});
  test.outcome.kind = TestOutcome::Kind::failed;
  test.outcome.failureReason = "\"Place order\" stayed grey.";
  EXPECT_FALSE(targetElement(storyOf(test).screens.at(0)).enabled);
}

TEST(ScreenStoryTest, ASwipeUncoversTheButton) {
  const auto story = storyOf(firstTest("Add to cart and remove"));
  const auto before = story.screens.at(4);
  EXPECT_EQ(targetElement(before).label, "Enamel mug");
  EXPECT_EQ(targetElement(before).buttonUnder, "");
  EXPECT_EQ(targetElement(story.screens.at(5)).buttonUnder, "Remove");
  EXPECT_THAT(labels(story.screens.at(6), Kind::notice), Contains("Your cart is empty"));
}

TEST(ScreenStoryTest, AnAppThatIsClosedIsOnTheHomeScreen) {
  const auto story = storyOf(firstTest("Check out as guest"));
  EXPECT_THAT(labels(story.screens.at(1), Kind::appIcon), Contains("Corner Shop"));
  EXPECT_FALSE(story.screens.at(2).has(Kind::appIcon));
  EXPECT_EQ(story.screens.at(2).title, "Corner Shop");
  EXPECT_TRUE(story.screens.at(9).has(Kind::appIcon));
}

TEST(ScreenStoryTest, AnAppAboutWalksShowsWalks) {
  const ScreenStory story(firstTest("Switch to miles"), "Trail Log", "android");
  EXPECT_TRUE(story.screens.at(0).isAndroid);
  EXPECT_EQ(element(story.screens.at(0), "Lakeside loop").detail, "7.8 km");
  EXPECT_TRUE(element(story.screens.at(2), "Kilometres").strong);
  EXPECT_TRUE(element(story.screens.at(3), "Miles").strong);
  EXPECT_FALSE(element(story.screens.at(3), "Kilometres").strong);
  EXPECT_EQ(element(story.screens.at(4), "Lakeside loop").detail, "4.8 mi");
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
  for (std::size_t i = 0; i < story.screens.size(); ++i) {
    const auto screen = story.screens.at(i);
    EXPECT_LT(screen.target.value_or(0), screen.elements.size());
  }
  EXPECT_EQ(storyOf(PlannedTest()).screens.at(0).title, "Corner Shop");
}

using Named = std::pair<std::optional<Kind>, std::string>;

std::vector<Named> named(const char* type, const char* description) {
  std::vector<Named> parts;
  for (const auto& part : StepWords(type, description).parts) {
    parts.emplace_back(part.kind, part.label);
  }
  return parts;
}

TEST(StepWordsTest, TheWordBeforeAQuotedNameSaysWhatItIs) {
  EXPECT_THAT(named("tap", "Tap the button \"Redeem\""),
              ElementsAre(Named{Kind::button, "Redeem"}));
  EXPECT_THAT(named("drag", "Drag the right handle of \"Price\" to the middle of its track"),
              ElementsAre(Named{Kind::slider, "Price"}));
  EXPECT_THAT(named("visualAssert", "The page \"Kitchen\" lists the product \"Enamel mug\""),
              ElementsAre(Named{Kind::heading, "Kitchen"}, Named{Kind::item, "Enamel mug"}));
}

TEST(StepWordsTest, TheWordAfterItDoesToo) {
  EXPECT_THAT(named("visualAssert", "Is the 'Cart' tab visible?"),
              ElementsAre(Named{Kind::tab, "Cart"}));
}

TEST(StepWordsTest, WordsFartherAwaySayNothing) {
  EXPECT_THAT(named("visualAssert", "The account page greets \"ada\""),
              ElementsAre(Named{std::nullopt, "ada"}));
}

TEST(StepWordsTest, ApostrophesAreNoQuotes) {
  EXPECT_THAT(named("visualAssert", "The list 'My walks' begins with today's walk, not Ada's"),
              ElementsAre(Named{Kind::heading, "My walks"}));
  EXPECT_THAT(named("tap", "Tap 'Don't allow'"), ElementsAre(Named{std::nullopt, "Don't allow"}));
  EXPECT_THAT(named("tap", "Tap “Später”"), ElementsAre(Named{std::nullopt, "Später"}));
}

TEST(StepWordsTest, ATapWithoutQuotesNamesWhatIsLeft) {
  EXPECT_THAT(named("tap", "Tap the Log in button"), ElementsAre(Named{Kind::button, "Log in"}));
  EXPECT_THAT(named("tap", "tap on profile in the bar below"),
              ElementsAre(Named{std::nullopt, "Profile"}));
  EXPECT_THAT(named("tap", "Tap the magnifying glass in the bar at the top"),
              ElementsAre(Named{std::nullopt, "Magnifying glass"}));
  EXPECT_THAT(named("tap", ""), IsEmpty());
  EXPECT_THAT(named("tap", "Tap"), ElementsAre(Named{std::nullopt, "Tap"}));
}

TEST(StepWordsTest, WhatIsTypedAndWhatOtherTestsDoNamesNothing) {
  EXPECT_THAT(named("input", "say \"hello\""), IsEmpty());
  EXPECT_THAT(named("runTest", "Run the test \"Sign in\""), IsEmpty());
}

TEST(StepWordsTest, OddQuotesAreTakenAsTheyCome) {
  for (const char* text :
       {"\"", "\"\"", "'", "Tap \"Save", "“", "a\"b\"c\"", "'' ''", "\xC3\xA9'"}) {
    (void)named("tap", text);
    (void)named("visualAssert", text);
  }
  EXPECT_THAT(named("visualAssert", "Tap \"Save"), IsEmpty());
}

TEST(StepWordsTest, SpeaksInWholeWords) {
  const StepWords step("visualAssert", "The Total is shown");
  EXPECT_TRUE(step.speakOf("sum total"));
  EXPECT_FALSE(step.speakOf("tot otal sum"));
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
