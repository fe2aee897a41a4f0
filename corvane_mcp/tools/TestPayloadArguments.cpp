#include "corvane_mcp/tools/TestPayloadArguments.h"

#include <algorithm>
#include <charconv>

#include "CorvaneCore/authoring/AuthoringTerms.h"
#include "CorvaneCore/text/Utf8.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

template <class Value>
void copy(const JsonObject& from, std::string_view key, std::optional<Value>& into) {
  into = readMember<Value>(from, key);
}

/// The array under `key` when all its elements are objects, else nullptr.
const AnyCodable::Array* objectsAt(const JsonObject& object, std::string_view key) {
  const auto* array = object.findAs<AnyCodable::Array>(key);
  const auto isObject = [](const AnyCodable& element) { return element.object() != nullptr; };
  return array && std::all_of(array->begin(), array->end(), isObject) ? array : nullptr;
}

/// A description as its command wants it; that of any other step stays as it was sent.
std::string normalizedDescription(const AgentInteraction& interaction) {
  using Description = Vocabulary<BuiltInCommand>::Description;
  const auto command = interaction.command();
  const auto form = command ? vocabularyRow(*command).description : Description::asSent;
  switch (form) {
    case Description::alwaysEmpty:
      return "";
    case Description::trimmed:
      return std::string(trimWhitespace(interaction.description));
    case Description::asSent:
      break;
  }
  return interaction.description;
}

enum class Level { test, branch };

/// The steps that an array of objects holds. Branches are one level deep; what lies deeper is
/// dropped.
std::vector<AgentInteraction> readInteractions(const AnyCodable::Array& steps, Level level) {
  std::vector<AgentInteraction> interactions;
  for (const AnyCodable& element : steps) {
    const JsonObject& step = *element.object();
    AgentInteraction& read = interactions.emplace_back();
    read.type = readMember<std::string>(step, "type").value_or("");
    copy(step, "parameters", read.parameters);
    copy(step, "memoryEnabled", read.memoryEnabled);
    copy(step, "aiSegmentationMode", read.aiSegmentationMode);
    copy(step, "previousStepCondition", read.previousStepCondition);
    copy(step, "referencedTestId", read.referencedTestId);
    copy(step, "referencedTestName", read.referencedTestName);
    copy(step, "arguments", read.arguments);
    copy(step, "fromStep", read.fromStep);
    copy(step, "toStep", read.toStep);
    copy(step, "udiName", read.udiName);
    copy(step, "visualCheckpoint", read.visualCheckpoint);
    read.description = readMember<std::string>(step, "description").value_or("");
    read.description = normalizedDescription(read);
    const auto* children = level == Level::test ? objectsAt(step, "children") : nullptr;
    if (children) read.children = readInteractions(*children, Level::branch);
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
    if (readMember<std::string>(arguments, key).value_or("").empty()) {
      return "'" + key + "' is required and must be non-empty.";
    }
  }
  if (!objectsAt(arguments, "interactions")) {
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

void TestPayloadArguments::copyInto(AgentTestSchema& payload, const JsonObject& arguments) {
  payload.version = leadingInteger(readMember<std::string>(arguments, "version").value_or(""),
                                   AgentTestSchema::currentSchemaVersion);
  payload.projectName = readMember<std::string>(arguments, "projectName").value_or("");
  copy(arguments, "targetPlatform", payload.targetPlatform);
  copy(arguments, "iosProjectPath", payload.iosProjectPath);
  copy(arguments, "bundleIdentifier", payload.bundleIdentifier);
  copy(arguments, "androidProjectPath", payload.androidProjectPath);
  copy(arguments, "applicationId", payload.applicationId);
  copy(arguments, "autoRun", payload.autoRun);
  copy(arguments, "buildFirst", payload.buildFirst);
  copy(arguments, "suiteName", payload.suiteName);
  copy(arguments, "simulatorUDID", payload.simulatorUDID);

  AgentTest& test = payload.tests.emplace_back();
  test.name = readMember<std::string>(arguments, "testName").value_or("");
  copy(arguments, "testDescription", test.description);
  test.index = readMember<std::int64_t>(arguments, "testIndex").value_or(0);
  copy(arguments, "selfHealingMode", test.selfHealingMode);
  if (const auto* steps = objectsAt(arguments, "interactions")) {
    test.interactions = readInteractions(*steps, Level::test);
  }
}

}  // namespace corvane
