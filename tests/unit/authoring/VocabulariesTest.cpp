#include <gtest/gtest.h>

#include "CorvaneCore/authoring/InteractionType.h"
#include "CorvaneCore/authoring/Vocabularies.h"
#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

/// Every row parses back to its own value, and nothing but its exact text does.
template <class E>
void expectWords(std::string_view words) {
  EXPECT_EQ(joinedRawValues<E>(" "), words);
  for (const auto& row : Vocabulary<E>::rows) {
    EXPECT_EQ(fromRawValue<E>(row.rawValue), row.value) << row.rawValue;
    EXPECT_EQ(rawValue(row.value), row.rawValue);
    EXPECT_EQ(fromRawValue<E>(std::string(row.rawValue) + " "), std::nullopt);
    std::string capital(row.rawValue);
    capital[0] = static_cast<char>(capital[0] ^ 0x20);
    EXPECT_EQ(fromRawValue<E>(capital), std::nullopt) << capital;
  }
  EXPECT_EQ(fromRawValue<E>(""), std::nullopt);
}

TEST(VocabulariesTest, ValuesStandInOrder) {
  expectWords<InteractionType>(Payloads::allTypes);
  expectWords<BuiltInCommand>(
      "none terminateApplication openApplication openUrl goHome goBack hitReturnKey clearText "
      "hitBackspaceKey tapToDismiss");
  expectWords<RegionOfInterest>(
      "all content top20 bottom15 top33 bottom33 contentLeading50 contentTrailing50 "
      "contentCenter33 top20Leading50 top20Trailing50 top20Center33 bottom15Leading50 "
      "bottom15Trailing50 bottom15Center33 top33Leading50 top33Trailing50 top33Center33 "
      "bottom33Leading50 bottom33Trailing50 bottom33Center33");
  expectWords<ScrollDirection>("auto up down left right");
  expectWords<ScrollSpeed>("auto ultraSlow slow normal fast ultraFast");
  expectWords<ScrollSearchType>("itemScan general");
  expectWords<DragMode>("auto hardcoded");
  expectWords<AISegmentationMode>("none auto forceFresh");
  expectWords<PreviousStepCondition>("previousSucceeded previousFailed");
  expectWords<AgentTargetPlatform>("iOS android");
  expectWords<SelfHealingMode>("off fullTest");
}

TEST(VocabulariesTest, EveryTypeHasItsChipTitle) {
  std::string titles;
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    titles.append(chipTitle(row.value)).append("\n");
  }
  EXPECT_EQ(titles,
            "TAP\nKEYBOARD TYPE\nVISUAL ASSERT\nSCROLL\nBUILT IN\nDELAY\nWAIT TO LOAD\nDRAG\n"
            "RUN TEST\nUSER DEFINED\nREUSE STEPS\n");
}

TEST(VocabulariesTest, TypesSayWhereTheyBelong) {
  EXPECT_EQ(joinedRawValues<InteractionType>(" ", isConcrete), "tap input scroll drag");
  EXPECT_EQ(joinedRawValues<InteractionType>(" ", takesPartInBranches), Payloads::branchTypes);
}

TEST(VocabulariesTest, EveryCommandHasItsTexts) {
  std::string texts;
  for (const auto& row : Vocabulary<BuiltInCommand>::rows) {
    texts.append(row.rawValue).append("|").append(title(row.value));
    texts.append(needsDescription(row.value) ? "|yes|" : "|no|");
    texts.append(placeholder(row.value)).append("\n");
  }
  EXPECT_EQ(texts,
            "none||no|\n"
            "terminateApplication|Terminate Application|yes|Application name\n"
            "openApplication|Open Application|yes|Enter application name\n"
            "openUrl|Open URL|yes|Enter URL (e.g. https://example.com or $urlParam)\n"
            "goHome|Go Home|no|\n"
            "goBack|Go Back|no|\n"
            "hitReturnKey|Hit Return Key|no|\n"
            "clearText|Clear Text|no|\n"
            "hitBackspaceKey|Hit Backspace Key|yes|Enter backspace count (e.g. 20)\n"
            "tapToDismiss|Tap to Dismiss|no|\n");
  EXPECT_EQ(joinedRawValues<BuiltInCommand>(" ", isLifecycle),
            "terminateApplication openApplication");
}

void expectRect(RegionOfInterest region, NormalizedRect expected) {
  const NormalizedRect rect = normalizedRect(region);
  EXPECT_DOUBLE_EQ(rect.x, expected.x) << rawValue(region);
  EXPECT_DOUBLE_EQ(rect.y, expected.y) << rawValue(region);
  EXPECT_DOUBLE_EQ(rect.width, expected.width) << rawValue(region);
  EXPECT_DOUBLE_EQ(rect.height, expected.height) << rawValue(region);
}

TEST(VocabulariesTest, EveryRegionHasItsRectangle) {
  using R = RegionOfInterest;
  struct Band {
    double y;
    double height;
    std::array<R, 4> regions;
  };
  const std::vector<Band> bands{
      {0.125, 0.75, {R::content, R::contentLeading50, R::contentTrailing50, R::contentCenter33}},
      {0, 0.2, {R::top20, R::top20Leading50, R::top20Trailing50, R::top20Center33}},
      {0.85, 0.15, {R::bottom15, R::bottom15Leading50, R::bottom15Trailing50, R::bottom15Center33}},
      {0, 0.33, {R::top33, R::top33Leading50, R::top33Trailing50, R::top33Center33}},
      {0.67, 0.33, {R::bottom33, R::bottom33Leading50, R::bottom33Trailing50, R::bottom33Center33}},
  };
  expectRect(R::all, {0, 0, 1, 1});
  for (const auto& [y, height, regions] : bands) {
    expectRect(regions[0], {0, y, 1, height});
    expectRect(regions[1], {0, y, 0.5, height});
    expectRect(regions[2], {0.5, y, 0.5, height});
    expectRect(regions[3], {0.335, y, 0.33, height});
  }
}

}  // namespace
}  // namespace corvane::testing
