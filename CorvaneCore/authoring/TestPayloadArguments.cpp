#include "CorvaneCore/authoring/TestPayloadArguments.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/AuthoringContract.h"
#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "CorvaneCore/json/JsonReader.h"
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

constexpr auto title = &AgentInteraction::title;
constexpr auto children = &AgentInteraction::children;

std::vector<AgentInteraction> takeSteps(AnyCodable& steps, Level level, const DecodePath& at,
                                        std::vector<std::string>& dropped);

/// Takes the step at the place `at` out of an object, and adds notes on what is dropped. Branches
/// are one level deep; what lies deeper is dropped.
AgentInteraction takeStep(JsonObject& given, Level level, const DecodePath& at,
                          std::vector<std::string>& dropped) {
  AgentInteraction step;
  const auto drop = [&](std::string_view key, std::string_view why) {
    dropped.push_back(droppedNote(at.member(key).text(), why));
  };
  takeFieldsExcept<title, children>(given, step, drop);
  normalizeDescription(step);
  AnyCodable* branch = given.find(keyOf<children>());
  if (!branch || branch->isNull()) return step;
  if (!holdsObjects(*branch)) {
    drop(keyOf<children>(), noSteps);
  } else if (level == Level::test) {
    step.children = takeSteps(*branch, Level::branch, at.member(keyOf<children>()), dropped);
  } else if (!branch->array()->empty()) {
    drop(keyOf<children>(), "branches are one level deep");
  }
  return step;
}

/// The same for an array of objects.
std::vector<AgentInteraction> takeSteps(AnyCodable& steps, Level level, const DecodePath& at,
                                        std::vector<std::string>& dropped) {
  std::vector<AgentInteraction> taken;
  for (AnyCodable& element : std::get<AnyCodable::Array>(steps.value())) {
    auto& given = std::get<JsonObject>(element.value());
    taken.push_back(takeStep(given, level, at.element(taken.size()), dropped));
  }
  return taken;
}

/// Reads steps that are as they should be: every field has a value of its type.
namespace PlainSteps {

// Each of these says whether the value here was as it should be; only then it has been taken.

bool take(JsonCursor& cursor, std::string& text) {
  const auto taken = cursor.takeIfString();
  if (taken) text = *taken;
  return taken.has_value();
}
bool take(JsonCursor& cursor, std::optional<std::string>& text) {
  return take(cursor, text.emplace());
}
bool take(JsonCursor& cursor, std::optional<bool>& value) {
  return (value = cursor.takeIfBoolean()).has_value();
}
bool take(JsonCursor& cursor, std::optional<std::int64_t>& value) {
  return (value = cursor.takeIfInteger()).has_value();
}
bool take(JsonCursor& cursor, std::optional<JsonObject>& object) {
  if (!cursor.atObject()) return false;
  AnyCodable value = cursor.read();
  object = std::move(std::get<JsonObject>(value.value()));
  return true;
}
bool take(JsonCursor& cursor, std::optional<std::map<std::string, std::string>>& texts);
bool take(JsonCursor& cursor, std::optional<std::vector<AgentInteraction>>& branch);

/// Does `take` with a value that is passed over when that fails, or when `isPlain` is false
/// already.
template <class Take>
bool takeOrSkip(JsonCursor& cursor, bool isPlain, Take take) {
  const auto before = cursor.mark();
  if (isPlain && take()) return true;
  cursor.goBackTo(before);
  cursor.skip();
  return false;
}

bool take(JsonCursor& cursor, std::optional<std::map<std::string, std::string>>& texts) {
  if (!cursor.atObject()) return false;
  bool isPlain = true;
  auto& taken = texts.emplace();
  cursor.members([&](std::string_view key) {
    std::string& text = taken[std::string(key)];
    isPlain = takeOrSkip(cursor, isPlain, [&] { return take(cursor, text); });
  });
  return isPlain;
}

/// Whether two keys are equal, of which one is known to have `size` bytes: the compiler compares
/// these in place.
template <std::size_t size>
bool isKey(std::string_view key, std::string_view known) {
  return key.size() == size && std::memcmp(key.data(), known.data(), size) == 0;
}

/// Takes the value of `key` into its field; of two the last counts. What is no field is passed
/// over, as is the title, which nobody sends.
bool takeField(JsonCursor& cursor, std::string_view key, Level level, AgentInteraction& step) {
  static constexpr auto fields = AgentInteraction::fields();
  bool isPlain = true;
  const auto takeIfOf = [&]<std::size_t position>() {
    static constexpr auto& field = fields.template at<position>();
    if constexpr (field.key == keyOf<title>()) return false;
    if (!isKey<field.key.size()>(key, field.key)) return false;
    const bool isAllowed = field.key != keyOf<children>() || level == Level::test;
    isPlain = isAllowed && take(cursor, step.*field.member);
    return true;
  };
  const bool isField = [&]<std::size_t... I>(std::index_sequence<I...>) {
    return (takeIfOf.template operator()<I>() || ...);
  }(std::make_index_sequence<decltype(fields)::size>());
  if (!isField) cursor.skip();
  return isPlain;
}

bool take(JsonCursor& cursor, Level level, AgentInteraction& step) {
  if (!cursor.atObject()) return false;
  bool isPlain = true;
  cursor.members([&](std::string_view key) {
    isPlain = takeOrSkip(cursor, isPlain, [&] { return takeField(cursor, key, level, step); });
  });
  normalizeDescription(step);
  return isPlain;
}

bool take(JsonCursor& cursor, std::optional<std::vector<AgentInteraction>>& branch) {
  if (!cursor.atArray()) return false;
  bool isPlain = true;
  auto& taken = branch.emplace();
  cursor.elements([&] {
    isPlain = takeOrSkip(cursor, isPlain,
                         [&] { return take(cursor, Level::branch, taken.emplace_back()); });
  });
  return isPlain;
}

}  // namespace PlainSteps

/// Reads the steps of a test; nothing, and the cursor is anywhere, where there is no array of
/// objects.
std::optional<TestSteps> readSteps(JsonCursor& cursor) {
  if (!cursor.atArray()) return std::nullopt;
  const DecodePath at(keyOf<&AgentTest::interactions>());
  TestSteps steps;
  bool areObjects = true;
  cursor.elements([&] {
    areObjects = areObjects && cursor.atObject();
    if (!areObjects) return cursor.skip();
    const auto before = cursor.mark();
    AgentInteraction& step = steps.list.emplace_back();
    if (PlainSteps::take(cursor, Level::test, step)) return;
    cursor.goBackTo(before);
    AnyCodable given = cursor.read();
    step = takeStep(std::get<JsonObject>(given.value()), Level::test,
                    at.element(steps.list.size() - 1), steps.dropped);
  });
  return areObjects ? std::optional(std::move(steps)) : std::nullopt;
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

std::optional<TestPayloadArguments> TestPayloadArguments::read(std::string_view json,
                                                               const OnMisfit& onMisfit) {
  constexpr auto interactionsKey = keyOf<&AgentTest::interactions>();
  bool isObject = false;
  std::vector<JsonObject::Member> members;
  std::optional<TestSteps> steps;
  JsonReader().read(json, [&](JsonCursor& cursor) {
    isObject = cursor.atObject();
    if (!isObject) return cursor.skip();
    cursor.members([&](std::string_view key) {
      auto& member = members.emplace_back(std::string(key), AnyCodable());
      if (key == interactionsKey) {
        const auto before = cursor.mark();
        // Of members of one name the last counts; where these are steps, the others count as null.
        if ((steps = readSteps(cursor))) return;
        cursor.goBackTo(before);
      }
      member.value = cursor.read();
    });
  });
  if (!isObject) return std::nullopt;
  JsonObject object(std::move(members));
  auto arguments = takeDeclared<TestPayloadArguments>(object, onMisfit);
  if (steps) arguments.interactions = std::move(steps);
  return arguments;
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
