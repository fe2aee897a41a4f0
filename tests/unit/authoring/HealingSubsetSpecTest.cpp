#include "CorvaneCore/authoring/AuthoringContract.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

constexpr const char* regions =
    "one of all, content, top20, bottom15, top33, bottom33, contentLeading50, contentTrailing50, "
    "contentCenter33, top20Leading50, top20Trailing50, top20Center33, bottom15Leading50, "
    "bottom15Trailing50, bottom15Center33, top33Leading50, top33Trailing50, top33Center33, "
    "bottom33Leading50, bottom33Trailing50, bottom33Center33.";

std::string block(const std::string& type) {
  const std::string text = HealingSubsetSpec::make();
  const auto begin = text.find("\n\n▸ type: \"" + type + "\"\n");
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find("\n\n", begin + 2) - begin);
}

TEST(HealingSubsetSpecTest, OpensWithItsRule) {
  const std::string text = HealingSubsetSpec::make();
  ASSERT_TRUE(text.starts_with("CORVANE HEALING TOOLBOX\n━"));
  std::size_t at = text.find('\n') + 1;
  while (text.compare(at, 3, "━") == 0) at += 3;
  EXPECT_TRUE(text.substr(at).starts_with(
      "\nYou MUST ONLY emit healingSteps using these four types.\n"
      "Field names and enum values match Corvane MCP create_test (same RegionOfInterest).\n\n▸ "));
}

TEST(HealingSubsetSpecTest, OffersFourTypes) {
  const std::string text = HealingSubsetSpec::make();
  std::string types;
  for (auto at = text.find("▸ type: \""); at != std::string::npos;
       at = text.find("▸ type: \"", at + 1)) {
    const auto begin = at + std::string("▸ type: \"").size();
    types += text.substr(begin, text.find('"', begin) - begin) + " ";
  }
  EXPECT_EQ(types, "tap input scroll builtIn ");
}

TEST(HealingSubsetSpecTest, ListsTheRegions) {
  EXPECT_NE(block("tap").find(regions), std::string::npos);
  EXPECT_NE(block("scroll").find(regions), std::string::npos);
  EXPECT_EQ(block("input").find("regionOfInterest"), std::string::npos);
  EXPECT_NE(block("scroll").find("one of auto, up, down, left, right."), std::string::npos);
}

/// A repair in the middle of a test never ends or starts the app.
TEST(HealingSubsetSpecTest, ListsTheCommandsOfARunningApp) {
  EXPECT_NE(block("builtIn").find("parameters.command: one of openUrl, goHome, goBack, "
                                  "hitReturnKey, clearText, hitBackspaceKey, tapToDismiss."),
            std::string::npos);
  EXPECT_EQ(HealingSubsetSpec::make().find("Application"), std::string::npos);
}

}  // namespace
}  // namespace corvane::testing
