#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <sstream>
#include <vector>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "tests/unit/authoring/Payloads.h"

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
  std::istringstream names{std::string(Payloads::allTypes)};
  for (std::string name; names >> name;) {
    const auto type = fromRawValue<InteractionType>(name);
    expected += "## " + name + "\n\n" + std::string(AuthoringContract::guidance(*type)) + "\n\n";
  }
  expected.resize(expected.size() - 2);
  EXPECT_EQ(AuthoringContract::fullMarkdown(), expected);
}

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

using Names = std::set<std::string>;

/// Adds every property name and every enumerated word of a schema.
void collectNames(const AnyCodable& schema, Names& names) {
  if (const auto* array = schema.array()) {
    for (const auto& element : *array) collectNames(element, names);
  }
  if (!schema.object()) return;
  if (const auto* properties = schema.findAs<JsonObject>("properties")) {
    for (const auto& [key, property] : *properties) {
      names.insert(key);
      collectNames(property, names);
    }
  }
  if (const auto* words = schema.findAs<AnyCodable::Array>("enum")) {
    for (const auto& word : *words) names.insert(*word.string());
  }
  if (const auto* word = schema.findAs<std::string>("const")) names.insert(*word);
  for (const char* inside : {"items", "oneOf", "anyOf"}) {
    if (const auto* part = schema.find(inside)) collectNames(*part, names);
  }
}

/// What the schema of create_test's arguments knows.
Names namesOfSchema() {
  Names names;
  collectNames(InputSchemaBuilder::build(), names);
  return names;
}

/// What a text presents as a name: words like thisOne, and words in backticks, dotted ones apart.
Names namesOfText(const std::string& text) {
  static const std::regex looksLikeName("\\b[a-z]+[A-Z][A-Za-z0-9]*\\b");
  static const std::regex inBackticks("`([a-z][A-Za-z0-9.]*)`");
  static const std::regex dotted("[A-Za-z0-9]+");
  Names names;
  const auto addAll = [&names](const std::string& where, const std::regex& pattern) {
    for (std::sregex_iterator at(where.begin(), where.end(), pattern), end; at != end; ++at) {
      names.insert(at->str());
    }
  };
  addAll(text, looksLikeName);
  for (std::sregex_iterator at(text.begin(), text.end(), inBackticks), end; at != end; ++at) {
    addAll((*at)[1].str(), dotted);
  }
  return names;
}

/// Names that are no fields of the schema and are not meant as such.
const Names otherNames{
    "inputSchema",   // of the tool's descriptor
    "title",         // mentioned only to say that it is never sent
    "paramName",     // an example of a placeholder
    "randomDigits",  // a marker in texts to type
    "healingSteps",  // what a self-healing author emits
};

Names unknownNames(const std::string& text) {
  const Names known = namesOfSchema();
  Names unknown;
  for (const auto& name : namesOfText(text)) {
    if (!known.contains(name) && !otherNames.contains(name)) unknown.insert(name);
  }
  return unknown;
}

TEST(ProseFieldsTest, TheContractNamesOnlyFieldsOfTheSchema) {
  EXPECT_EQ(unknownNames(AuthoringContract::fullMarkdown()), Names());
}

TEST(ProseFieldsTest, TheHealingToolboxNamesOnlyFieldsOfTheSchema) {
  EXPECT_EQ(unknownNames(HealingSubsetSpec::make()), Names());
}

void collectDescriptions(const AnyCodable& schema, std::string& text) {
  if (const auto* array = schema.array()) {
    for (const auto& element : *array) collectDescriptions(element, text);
  }
  if (!schema.object()) return;
  for (const auto& [key, value] : *schema.object()) {
    if (key == "description" && value.string()) {
      text += *value.string() + "\n";
    } else {
      collectDescriptions(value, text);
    }
  }
}

TEST(ProseFieldsTest, TheSchemaNamesOnlyItsOwnFields) {
  std::string text;
  collectDescriptions(InputSchemaBuilder::build(), text);
  for (const auto& descriptor : InputSchemaBuilder::interactionDescriptors()) {
    collectDescriptions(descriptor.paramsSchema, text);
  }
  EXPECT_EQ(unknownNames(text), Names());
}

TEST(ProseFieldsTest, OtherNamesAreNoticed) {
  EXPECT_EQ(unknownNames("send `delay.secs`, or worldMap with `region`; `tools/list`, `Welcome`"),
            (Names{"region", "secs", "worldMap"}));
  EXPECT_FALSE(namesOfText(AuthoringContract::generalContract()).empty());
}

}  // namespace
}  // namespace corvane::testing
