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

constexpr std::string_view noSteps = "expected an array of objects";

/// Takes the steps out of an array of objects at the place `at`, and adds notes on what is dropped.
/// Branches are one level deep; what lies deeper is dropped.
std::vector<AgentInteraction> takeSteps(AnyCodable& steps, Level level, const DecodePath& at,
                                        std::vector<std::string>& dropped) {
  constexpr auto children = &AgentInteraction::children;
  auto& elements = std::get<AnyCodable::Array>(steps.value());
  std::vector<AgentInteraction> taken(elements.size());
  for (std::size_t i = 0; i < elements.size(); ++i) {
    auto& given = std::get<JsonObject>(elements[i].value());
    AgentInteraction& step = taken[i];
    const DecodePath place = at.element(i);
    const auto drop = [&](std::string_view key, std::string_view why) {
      dropped.push_back(droppedNote(place.member(key).text(), why));
    };
    takeFieldsExcept<&AgentInteraction::title, children>(given, step, drop);
    normalizeDescription(step);
    AnyCodable* branch = given.find(keyOf<children>());
    if (!branch || branch->isNull()) continue;
    if (!holdsObjects(*branch)) {
      drop(keyOf<children>(), noSteps);
    } else if (level == Level::test) {
      step.children = takeSteps(*branch, Level::branch, place.member(keyOf<children>()), dropped);
    } else if (!branch->array()->empty()) {
      drop(keyOf<children>(), "branches are one level deep");
    }
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

std::string droppedNote(std::string_view place, std::string_view why) {
  return std::string(place).append(" dropped: ").append(why);
}

TestSteps Codec<TestSteps>::decode(AnyCodable&& value, const DecodePath& at) {
  if (!holdsObjects(value)) at.fail(noSteps);
  TestSteps steps;
  steps.list =
      takeSteps(value, Level::test, DecodePath(keyOf<&AgentTest::interactions>()), steps.dropped);
  return steps;
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
