#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"

namespace corvane::testing {
namespace {

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
