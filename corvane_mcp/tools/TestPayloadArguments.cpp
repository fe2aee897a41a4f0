#include "corvane_mcp/tools/TestPayloadArguments.h"

#include <algorithm>
#include <charconv>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/json/RecordFields.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

/// Whether the value is an array of nothing but objects.
bool holdsObjects(const AnyCodable* value) {
  const auto* array = value ? value->array() : nullptr;
  const auto isObject = [](const AnyCodable& element) { return element.object() != nullptr; };
  return array && std::all_of(array->begin(), array->end(), isObject);
}

/// Makes a description what its command wants; that of any other step stays as it was sent.
void normalizeDescription(AgentInteraction& interaction) {
  using Description = Vocabulary<BuiltInCommand>::Description;
  const auto command = interaction.command();
  const auto form = command ? vocabularyRow(*command).description : Description::asSent;
  switch (form) {
    case Description::alwaysEmpty:
      interaction.description.clear();
      break;
    case Description::trimmed:
      interaction.description = std::string(trimWhitespace(interaction.description));
      break;
    case Description::asSent:
      break;
  }
}

enum class Level { test, branch };

/// Takes the steps out of an array of objects. Branches are one level deep; what lies deeper is
/// dropped.
std::vector<AgentInteraction> takeInteractions(AnyCodable& steps, Level level) {
  auto& elements = std::get<AnyCodable::Array>(steps.value());
  std::vector<AgentInteraction> interactions(elements.size());
  auto next = interactions.begin();
  for (AnyCodable& element : elements) {
    auto& step = std::get<JsonObject>(element.value());
    AgentInteraction& taken = *next++;
    takeFields(step, taken,
               [](std::string_view key) { return key != "title" && key != "children"; });
    normalizeDescription(taken);
    AnyCodable* children = level == Level::test ? step.find("children") : nullptr;
    if (holdsObjects(children)) taken.children = takeInteractions(*children, Level::branch);
  }
  return interactions;
}

/// The integer that a version text such as "1.0" begins with.
std::int64_t leadingInteger(std::string_view version, std::int64_t otherwise) {
  std::int64_t number = otherwise;
  std::from_chars(version.data(), version.data() + version.size(), number);
  return number;
}

/// Whether the argument `key` is there and holds no reverse-DNS identifier.
bool isDisplayName(const JsonObject& arguments, std::string_view key) {
  const auto* value = arguments.findAs<std::string>(key);
  return value && !value->empty() && value->find('.') == std::string::npos;
}

}  // namespace

std::optional<std::string> TestPayloadArguments::refusal(const JsonObject& arguments) {
  for (const std::string key : {"projectName", "testName"}) {
    const auto* name = arguments.findAs<std::string>(key);
    if (!name || name->empty()) return "'" + key + "' is required and must be non-empty.";
  }
  if (!holdsObjects(arguments.find("interactions"))) {
    return "'interactions' must be an array of interaction objects.";
  }
  for (const std::string key : {"bundleIdentifier", "applicationId"}) {
    if (!isDisplayName(arguments, key)) continue;
    return "'" + *arguments.findAs<std::string>(key) + "' looks like an app display name, not a " +
           key + ". Pass the real reverse-DNS identifier (e.g. " +
           AuthoringTerms::exampleIdentifier +
           ") — check the Xcode target / applicationId in build.gradle.";
  }
  return std::nullopt;
}

void TestPayloadArguments::moveInto(AgentTestSchema& payload, JsonObject& arguments) {
  payload.version = leadingInteger(takeMember<std::string>(arguments, "version").value_or(""),
                                   AgentTestSchema::currentSchemaVersion);
  payload.projectName = takeMember<std::string>(arguments, "projectName").value_or("");
  const auto take = [&arguments]<class Value>(std::string_view key, std::optional<Value>& into) {
    into = takeMember<Value>(arguments, key);
  };
  take("targetPlatform", payload.targetPlatform);
  take("iosProjectPath", payload.iosProjectPath);
  take("bundleIdentifier", payload.bundleIdentifier);
  take("androidProjectPath", payload.androidProjectPath);
  take("applicationId", payload.applicationId);
  take("autoRun", payload.autoRun);
  take("buildFirst", payload.buildFirst);
  take("suiteName", payload.suiteName);
  take("simulatorUDID", payload.simulatorUDID);

  AgentTest& test = payload.tests.emplace_back();
  test.name = takeMember<std::string>(arguments, "testName").value_or("");
  take("testDescription", test.description);
  test.index = takeMember<std::int64_t>(arguments, "testIndex").value_or(0);
  take("selfHealingMode", test.selfHealingMode);
  AnyCodable* steps = arguments.find("interactions");
  if (holdsObjects(steps)) test.interactions = takeInteractions(*steps, Level::test);
}

}  // namespace corvane
