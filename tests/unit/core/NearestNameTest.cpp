#include "CorvaneCore/text/NearestName.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

const std::vector<std::string> tests{"Sign in", "Sign out", "Search and filter", "Übersicht"};

// Fails when two swapped letters count as two mistakes, or case as one.
TEST(NearestName, FindsMisspellings) {
  EXPECT_EQ(nearestName("Sing in", tests), "Sign in");
  EXPECT_EQ(nearestName("sign IN", tests), "Sign in");
  EXPECT_EQ(nearestName("Search and filtre", tests), "Search and filter");
  EXPECT_EQ(nearestName("übersict", tests), "Übersicht");
}

TEST(NearestName, FindsBeginnings) {
  EXPECT_EQ(nearestName("search", tests), "Search and filter");
}

// Fails when the nearest of two is not taken, or the limit does not grow with the name.
TEST(NearestName, TakesTheNearest) {
  EXPECT_EQ(nearestName("Sign ot", tests), "Sign out");
  EXPECT_EQ(nearestName("ab", {"xy", "ac"}), "ac");
}

// Fails when anything counts as near.
TEST(NearestName, FindsNothingElsewhere) {
  EXPECT_EQ(nearestName("Checkout", tests), std::nullopt);
  EXPECT_EQ(nearestName("", tests), std::nullopt);
  EXPECT_EQ(nearestName("q", {"x"}), std::nullopt);
  EXPECT_EQ(nearestName("Sign in", {}), std::nullopt);
}

TEST(NearestName, IsSuggestedOnOneLine) {
  EXPECT_EQ(didYouMean("ab", {"a\nb"}), " Did you mean 'a\\nb'?");
  EXPECT_EQ(didYouMean("Checkout", tests), "");
}

}  // namespace
}  // namespace corvane::testing
