#include "CorvaneCore/authoring/TestPayloadArguments.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

/// Whether the value is an array of nothing but objects.
bool holdsObjects(const AnyCodable& value) {
  const auto* array = value.array();
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
std::vector<AgentInteraction> takeSteps(AnyCodable& steps, Level level) {
  constexpr auto children = &AgentInteraction::children;
  auto& elements = std::get<AnyCodable::Array>(steps.value());
  std::vector<AgentInteraction> taken(elements.size());
  auto next = taken.begin();
  for (AnyCodable& element : elements) {
    auto& given = std::get<JsonObject>(element.value());
    AgentInteraction& step = *next++;
    takeFieldsExcept<&AgentInteraction::title, children>(given, step);
    normalizeDescription(step);
    AnyCodable* branch = level == Level::test ? given.find(keyOf<children>()) : nullptr;
    if (branch && holdsObjects(*branch)) step.children = takeSteps(*branch, Level::branch);
  }
  return taken;
}

/// The integer that a version text such as "1.0" begins with.
std::int64_t leadingInteger(std::string_view version, std::int64_t otherwise) {
  std::int64_t number = otherwise;
  std::from_chars(version.data(), version.data() + version.size(), number);
  return number;
}

/// The refusal of an identifier that is no reverse-DNS name.
std::optional<std::string> refusalOfIdentifier(std::string_view key,
                                               const std::optional<std::string>& given) {
  if (isMissing(given) || given->find('.') != std::string::npos) return std::nullopt;
  return "'" + *given + "' looks like an app display name, not a " + std::string(key) +
         ". Pass the real reverse-DNS identifier (e.g. " + AuthoringTerms::exampleIdentifier +
         ") — check the Xcode target / applicationId in build.gradle.";
}

}  // namespace

TestSteps Codec<TestSteps>::decode(AnyCodable&& value, const DecodePath& at) {
  if (!holdsObjects(value)) at.fail("expected an array of objects");
  return {takeSteps(value, Level::test)};
}

JsonObject ArgumentType<TestSteps>::schema() {
  return InputSchemaBuilder::stepsSchema();
}

std::optional<std::string> TestPayloadArguments::refusal() const {
  if (isMissing(projectName)) return "'projectName' is required and must be non-empty.";
  if (isMissing(testName)) return "'testName' is required and must be non-empty.";
  if (!interactions) return "'interactions' must be an array of interaction objects.";
  if (auto reason = refusalOfIdentifier("bundleIdentifier", bundleIdentifier)) return reason;
  return refusalOfIdentifier("applicationId", applicationId);
}

void TestPayloadArguments::moveInto(AgentTestSchema& payload) && {
  payload.version = leadingInteger(version.value_or(""), AgentTestSchema::currentSchemaVersion);
  payload.projectName = std::move(projectName).value_or("");
  payload.targetPlatform = std::move(targetPlatform);
  payload.iosProjectPath = std::move(iosProjectPath);
  payload.bundleIdentifier = std::move(bundleIdentifier);
  payload.androidProjectPath = std::move(androidProjectPath);
  payload.applicationId = std::move(applicationId);
  payload.autoRun = autoRun;
  payload.buildFirst = buildFirst;
  payload.suiteName = std::move(suiteName);
  payload.simulatorUDID = std::move(simulatorUDID);

  AgentTest& test = payload.tests.emplace_back();
  test.name = std::move(testName).value_or("");
  test.description = std::move(testDescription);
  test.index = testIndex.value_or(0);
  test.selfHealingMode = std::move(selfHealingMode);
  if (interactions) test.interactions = std::move(interactions->list);
}

}  // namespace corvane
