#include <gtest/gtest.h>

#include "corvane_standin/steps/Steps.h"

namespace corvane::testing {

using namespace standin;

namespace {

TEST(StepTextTest, TitlesAreTheHeadersOfTheEditor) {
  EXPECT_EQ(stepTitle("tap"), "TAP");
  EXPECT_EQ(stepTitle("waitToLoad"), "WAIT TO LOAD");
  EXPECT_EQ(stepTitle("input"), "KEYBOARD TYPE");
  EXPECT_EQ(stepTitle("gesture"), "gesture");
}

// Fails when a price is taken for a placeholder.
TEST(StepTextTest, ANameDoesNotBeginWithADigit) {
  EXPECT_EQ(placeholdersIn("$user pays $5.00 and $ to $_2"),
            (std::vector<std::string>{"user", "_2"}));
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
