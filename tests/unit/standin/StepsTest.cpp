#include <gmock/gmock.h>

#include "corvane_standin/steps/Steps.h"

namespace corvane::testing {

using namespace standin;

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Kind = NamedPart::Kind;

std::vector<NamedPart> named(const char* type, const char* description) {
  return StepWords(type, description).named();
}

TEST(StepWordsTest, TheWordBeforeAQuotedNameSaysWhatItIs) {
  EXPECT_THAT(named("tap", "Tap the button \"Redeem\""),
              ElementsAre(NamedPart{Kind::button, "Redeem"}));
  EXPECT_THAT(named("drag", "Drag the right handle of \"Price\" to the middle of its track"),
              ElementsAre(NamedPart{Kind::slider, "Price"}));
  EXPECT_THAT(
      named("visualAssert", "The page \"Kitchen\" lists the product \"Enamel mug\""),
      ElementsAre(NamedPart{Kind::page, "Kitchen"}, NamedPart{Kind::product, "Enamel mug"}));
}

TEST(StepWordsTest, TheWordAfterItDoesToo) {
  EXPECT_THAT(named("visualAssert", "Is the 'Cart' tab visible?"),
              ElementsAre(NamedPart{Kind::tab, "Cart"}));
}

TEST(StepWordsTest, WordsFartherAwaySayNothing) {
  EXPECT_THAT(named("visualAssert", "The account page greets \"ada\""),
              ElementsAre(NamedPart{Kind::unsaid, "ada"}));
}

TEST(StepWordsTest, ApostrophesAreNoQuotes) {
  EXPECT_THAT(named("visualAssert", "The list 'My walks' begins with today's walk, not Ada's"),
              ElementsAre(NamedPart{Kind::text, "My walks"}));
  EXPECT_THAT(named("tap", "Tap 'Don't allow'"),
              ElementsAre(NamedPart{Kind::unsaid, "Don't allow"}));
  EXPECT_THAT(named("tap", "Tap “Später”"), ElementsAre(NamedPart{Kind::unsaid, "Später"}));
}

TEST(StepWordsTest, ATapWithoutQuotesNamesWhatIsLeft) {
  EXPECT_THAT(named("tap", "Tap the Log in button"),
              ElementsAre(NamedPart{Kind::button, "Log in"}));
  EXPECT_THAT(named("tap", "tap on profile in the bar below"),
              ElementsAre(NamedPart{Kind::unsaid, "Profile"}));
  EXPECT_THAT(named("tap", "Tap the magnifying glass in the bar at the top"),
              ElementsAre(NamedPart{Kind::searchIcon, "Magnifying glass"}));
  EXPECT_THAT(named("tap", ""), IsEmpty());
  EXPECT_THAT(named("tap", "Tap"), ElementsAre(NamedPart{Kind::unsaid, "Tap"}));
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
  EXPECT_TRUE(step.speaksOf({"total"}));
  EXPECT_FALSE(step.speaksOf({"tot", "otal", "sum"}));
}

TEST(StepWordsTest, TheNamesOfTabsAreNotWhatAPageIsAbout) {
  EXPECT_FALSE(StepWords("tap", "Tap the tab \"Cart\"").speaksOf({"cart"}));
  EXPECT_FALSE(StepWords("tap", "Tap the button \"Add to cart\"").speaksOf({"cart"}));
  EXPECT_TRUE(StepWords("visualAssert", "The cart holds one \"Enamel mug\"").speaksOf({"cart"}));
}

TEST(StepTextTest, TitlesAreTheHeadersOfTheEditor) {
  EXPECT_EQ(stepTitle("tap"), "TAP");
  EXPECT_EQ(stepTitle("waitToLoad"), "WAIT TO LOAD");
  EXPECT_EQ(stepTitle("input"), "KEYBOARD TYPE");
  EXPECT_EQ(stepTitle("gesture"), "gesture");
}

TEST(StepTextTest, OnlyWholeNamesAreReplaced) {
  const std::map<std::string, std::string> values{{"user", "ada"}, {"price", "$user"}};
  EXPECT_EQ(substituteParameters("$user", values), "ada");
  EXPECT_EQ(substituteParameters("$username and $user.", values), "$username and ada.");
  EXPECT_EQ(substituteParameters("$user$user$", values), "adaada$");
  EXPECT_EQ(substituteParameters("$price", values), "$user");
  EXPECT_EQ(substituteParameters("costs $5.00, $$user", values), "costs $5.00, $ada");
  EXPECT_EQ(substituteParameters("", values), "");
}

}  // namespace
}  // namespace corvane::testing
