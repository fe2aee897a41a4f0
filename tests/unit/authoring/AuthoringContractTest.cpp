#include "CorvaneCore/authoring/AuthoringContract.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvane::testing {
namespace {

constexpr const char* noExtra = "(no extra guidance — see create_test.inputSchema)";

/// Whether `parts` occur in `text`, each after the one before it.
::testing::AssertionResult holdsInOrder(const std::string& text,
                                        const std::vector<std::string>& parts) {
  std::size_t from = 0;
  for (const auto& part : parts) {
    const auto at = text.find(part, from);
    if (at == std::string::npos) return ::testing::AssertionFailure() << "missing: " << part;
    from = at + part.size();
  }
  return ::testing::AssertionSuccess();
}

TEST(AuthoringContractTest, HasItsVersion) {
  EXPECT_EQ(AuthoringContract::version, 17);
}

TEST(AuthoringContractTest, TheSectionsFollowTheTitle) {
  const std::string contract = AuthoringContract::generalContract();
  EXPECT_TRUE(contract.starts_with("# Corvane test-authoring contract\n\n"));
  EXPECT_TRUE(holdsInOrder(
      contract, {"\n## 1. Bookends\n", "\n## 2. `description` is the per-step runtime payload\n",
                 "\n## 3. Don't swap field names, don't send `title`\n",
                 "\n## 4. Picking `regionOfInterest` and `memoryEnabled` (tap / scroll / drag)\n",
                 "\n## 5. Authoring vs composition (who writes which steps)\n",
                 "\n## 6. Conditional branches, the state router, and resilience\n"}));
  EXPECT_EQ(contract.find("## 7"), std::string::npos);
}

TEST(AuthoringContractTest, SaysWhatEveryAuthorHasToKnow) {
  EXPECT_TRUE(holdsInOrder(
      AuthoringContract::generalContract(),
      {"an ordered list of interactions", "`create_test.inputSchema`", "`tools/list`",
       "what the schema cannot express",
       // Bookends
       "builtIn/terminateApplication, always first",
       "builtIn/openApplication with description exactly '{{APP_NAME}}'",
       "builtIn/terminateApplication, always last",
       // Descriptions
       "the visible UI text in quotes", "anchors must be stable",
       "never its transient current value", "not wrapped in quotes",
       "'[[random(N)]]' / '[[randomDigits(N)]]'", "auto-clear",
       "(input / hitBackspaceKey / clearText / hitReturnKey) continue the same edit at the cursor",
       "exactly '{{APP_NAME}}'", "a positive integer count as a string", "empty",
       "scroll / drag / delay / waitToLoad / runTest: an optional label",
       // Field names
       "`parameters.seconds`", "`parameters.totalSeconds`", "TAP, BUILT IN, KEYBOARD TYPE",
       "Never send it",
       // Regions and memory
       "ERR WIDE, NEVER NARROW", "`all` is right most of the time", "more than once on the screen",
       "Within about 10% of an edge", "pinned to the very bottom edge",
       "never for the contents of a sheet", "Keep `memoryEnabled` on",
       "a wider region or with memory, not with a tighter crop",
       // Composition
       "authored by exploration: explore_flow", "runTest / userDefined / reuseSteps",
       "inside a recovery branch's `children`",
       // Branches
       "soft-fails instead of failing the test", "run only when the parent succeeds",
       "no previousFailed children still fails the test", "one level deep",
       "meaningless at the top level", "Launch is not a clean state",
       "never by changing device state out of band", "`selfHealingMode` 'fullTest'", "stay strict",
       // Closing
       "describe_project", "explore_flow", "(severity, code, path, message, suggestion)",
       "no need to memorise the codes"}));
}

TEST(AuthoringContractTest, ThreeTypesHaveAHintOfTheirOwn) {
  for (const auto& row : Vocabulary<InteractionType>::rows) {
    const bool own = row.value == InteractionType::runTest ||
                     row.value == InteractionType::userDefined ||
                     row.value == InteractionType::reuseSteps;
    EXPECT_EQ(AuthoringContract::guidance(row.value) == noExtra, !own) << row.rawValue;
  }
  EXPECT_EQ(AuthoringContract::noExtraGuidance, noExtra);
}

TEST(AuthoringContractTest, HintsSayWhatTheStepNeeds) {
  const auto hint = [](InteractionType type) {
    return std::string(AuthoringContract::guidance(type));
  };
  EXPECT_TRUE(holdsInOrder(
      hint(InteractionType::runTest),
      {"inline", "a run of its own", "`referencedTestId` (its UUID)", "`referencedTestName`"}));
  EXPECT_TRUE(holdsInOrder(hint(InteractionType::reuseSteps),
                           {"contiguous range", "`fromStep` and `toStep` are 0-based and inclusive",
                            "prompts verbatim", "learned position memory"}));
  EXPECT_TRUE(
      holdsInOrder(hint(InteractionType::userDefined),
                   {"reusable building block", "`udiName`", "inline", "one test and one run"}));
}

TEST(AuthoringContractTest, TheWholeTextEndsWithEveryHint) {
  std::string expected =
      AuthoringContract::generalContract() + "\n\n# Per-interaction guidance\n\n";
  for (const char* type :
       {"tap", "input", "visualAssert", "scroll", "builtIn", "delay", "waitToLoad", "drag"}) {
    expected += "## " + std::string(type) + "\n\n" + noExtra + "\n\n";
  }
  const auto add = [&](const std::string& name, InteractionType type, const std::string& end) {
    expected += "## " + name + "\n\n" + std::string(AuthoringContract::guidance(type)) + end;
  };
  add("runTest", InteractionType::runTest, "\n\n");
  add("userDefined", InteractionType::userDefined, "\n\n");
  add("reuseSteps", InteractionType::reuseSteps, "");
  EXPECT_EQ(AuthoringContract::fullMarkdown(), expected);
}

}  // namespace
}  // namespace corvane::testing
