#include <gtest/gtest.h>

#include <array>
#include <random>
#include <set>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

using Words = std::vector<std::string>;

const Words types{"tap",        "input", "visualAssert", "scroll",      "builtIn",   "delay",
                  "waitToLoad", "drag",  "runTest",      "userDefined", "reuseSteps"};
const Words commands{"none",
                     "terminateApplication",
                     "openApplication",
                     "openUrl",
                     "goBack",
                     "clearText",
                     "hitBackspaceKey",
                     "fly"};
const Words keys{"command", "seconds", "totalSeconds", "direction", "mode", "what", "from", "to"};
const Words conditions{"previousFailed", "previousSucceeded", "always"};
const Words modes{"off", "fullTest", "perStep"};
const Words texts{"", " ", "'x'", "{{APP_NAME}}", "5", "-1", "auto", "hardcoded", "up", "android"};

/// Payloads of every shape: mostly words that mean something where they stand, at times noise.
class RandomPayloads {
 public:
  explicit RandomPayloads(unsigned seed) : random(seed) {}

  AgentTestSchema payload() {
    AgentTestSchema payload;
    payload.projectName = word(texts);
    maybe(payload.targetPlatform, texts);
    maybe(payload.iosProjectPath, texts);
    maybe(payload.bundleIdentifier, texts);
    maybe(payload.androidProjectPath, texts);
    maybe(payload.applicationId, texts);
    if (chance(2)) payload.buildFirst = chance(2);
    for (unsigned left = below(4); left > 0; --left) payload.tests.push_back(test());
    return payload;
  }

 private:
  AgentTest test() {
    AgentTest test = Payloads::emptyTest(word(texts));
    test.index = static_cast<std::int64_t>(below(3));
    maybe(test.selfHealingMode, modes);
    for (unsigned left = below(7); left > 0; --left) test.interactions.push_back(step(0));
    return test;
  }

  AgentInteraction step(int depth) {
    AgentInteraction step = Payloads::bareStep(word(types));
    step.description = word(texts);
    if (!chance(4)) step.parameters = parameters();
    maybe(step.previousStepCondition, conditions);
    maybe(step.referencedTestName, texts);
    maybe(step.udiName, texts);
    if (chance(2)) step.fromStep = static_cast<std::int64_t>(below(5)) - 2;
    if (chance(2)) step.toStep = static_cast<std::int64_t>(below(5)) - 2;
    if (depth < 3 && chance(3)) {
      step.children.emplace();
      for (unsigned left = below(3); left > 0; --left) {
        step.children->push_back(this->step(depth + 1));
      }
    }
    return step;
  }

  JsonObject parameters() {
    JsonObject object;
    if (!chance(4)) object.set("command", word(commands));
    for (unsigned left = below(5); left > 0; --left) object.set(word(keys), value(0));
    return object;
  }

  AnyCodable value(int depth) {
    switch (below(depth < 3 ? 8 : 6)) {
      case 0:
        return AnyCodable();
      case 1:
        return AnyCodable(chance(2));
      case 2:
        return AnyCodable(static_cast<std::int64_t>(below(3)) - 1);
      case 3:
        return AnyCodable(static_cast<double>(below(30)) / 10 - 1);
      case 6:
        return AnyCodable(AnyCodable::Array{value(depth + 1)});
      case 7:
        return AnyCodable(JsonObject{{"x", value(depth + 1)}, {"y", value(depth + 1)}});
      default:
        return AnyCodable(word(texts));
    }
  }

  std::string word(const Words& words) {
    if (!chance(12)) return words[below(static_cast<unsigned>(words.size()))];
    std::string noise;
    for (unsigned left = below(6); left > 0; --left) noise += static_cast<char>(below(256));
    return noise;
  }

  void maybe(std::optional<std::string>& field, const Words& words) {
    if (chance(2)) field = word(words);
  }
  bool chance(unsigned oneIn) { return below(oneIn) == 0; }
  unsigned below(unsigned end) { return static_cast<unsigned>(random() % end); }

  std::mt19937 random;
};

TEST(ValidatorPropertyTest, AnyPayloadIsJudgedTheSameEveryTime) {
  RandomPayloads payloads(20260131);
  std::size_t issues = 0;
  std::set<ValidationIssue::Code> codes;
  for (int round = 0; round < 600; ++round) {
    const AgentTestSchema payload = payloads.payload();
    const ValidationResult result = TestValidator::validate(payload);
    ASSERT_EQ(AgentWire::encode(result), AgentWire::encode(TestValidator::validate(payload)));
    ASSERT_EQ(result.hasErrors(), !result.errors().empty());
    issues += result.issues.size();
    for (const auto& issue : result.issues) codes.insert(issue.code);
  }
  EXPECT_GT(issues, 5'000U);
  EXPECT_EQ(codes.size(), Vocabulary<ValidationIssue::Code>::rows.size()) << "codes never seen";
}

TEST(ValidatorPropertyTest, JudgingAPayloadLeavesItAsItWas) {
  RandomPayloads payloads(7);
  for (int round = 0; round < 100; ++round) {
    const AgentTestSchema payload = payloads.payload();
    const std::string before = AgentWire::encode(payload);
    (void)TestValidator::validate(payload);
    ASSERT_EQ(AgentWire::encode(payload), before);
  }
}

/// As deep as any file can be read.
TEST(ValidatorPropertyTest, DeepBranchesAreJudgedLikeShallowOnes) {
  AgentInteraction nested = Payloads::step(Payloads::look);
  for (int level = 0; level < 490; ++level) {
    AgentInteraction parent = Payloads::step(Payloads::look);
    parent.previousStepCondition = "previousFailed";
    parent.children.emplace().push_back(std::move(nested));
    nested = std::move(parent);
  }
  nested.previousStepCondition.reset();
  AgentTestSchema payload = Payloads::withStep(Payloads::look);
  payload.tests[0].selfHealingMode = "fullTest";
  payload.tests[0].interactions[2] = std::move(nested);
  EXPECT_EQ(issuesOf(payload).size(), 1U);
}

/// A sound step of every type; what it needs beside its parameters, and those.
struct SoundStep {
  std::string_view type;
  std::string_view members;
  std::string_view parameters;
};
constexpr std::array soundSteps{
    SoundStep{"tap", R"("description":"'OK'")", "{}"},
    SoundStep{"input", R"("description":"me")", "{}"},
    SoundStep{"visualAssert", R"("description":"'OK'?")", "{}"},
    SoundStep{"scroll", R"("description":"")", "{}"},
    SoundStep{"builtIn", R"("description":"")", R"({"command":"goHome"})"},
    SoundStep{"delay", R"("description":"")", R"({"seconds":1})"},
    SoundStep{"waitToLoad", R"("description":"")", R"({"totalSeconds":5})"},
    SoundStep{"drag", R"("description":"")", R"({"mode":"auto","what":"thumb"})"},
    SoundStep{"runTest", R"("description":"","referencedTestName":"Log in")", "{}"},
    SoundStep{"userDefined", R"("description":"","udiName":"Log in")", "{}"},
    SoundStep{"reuseSteps", R"("description":"","referencedTestName":"Log in","fromStep":0)", "{}"},
};

/// Every parameter of every type with a value that fits it.
struct Parameter {
  std::string_view key;
  std::string_view fitting;
};
constexpr std::array parameters{
    Parameter{"tapCount", "2"},
    Parameter{"regionOfInterest", R"("all")"},
    Parameter{"until", R"("Is it gone?")"},
    Parameter{"direction", R"("up")"},
    Parameter{"speed", R"("slow")"},
    Parameter{"searchType", R"("general")"},
    Parameter{"command", R"("goHome")"},
    Parameter{"seconds", "1.5"},
    Parameter{"totalSeconds", "5"},
    Parameter{"mode", R"("auto")"},
    Parameter{"what", R"("thumb")"},
    Parameter{"from", R"("the left end")"},
    Parameter{"to", R"({"x":0,"y":1})"},
};

enum class Value { fitting, otherType, null };

std::string valueText(const Parameter& parameter, Value value) {
  switch (value) {
    case Value::fitting:
      return std::string(parameter.fitting);
    case Value::otherType:
      return "[true]";
    case Value::null:
      break;
  }
  return "null";
}

/// The codes and places of the issues that a type draws when a parameter, one of its own or a stray
/// one, holds such a value beside what the type needs; empty for all that are not listed.
struct Expectation {
  std::string_view type;
  std::string_view key;
  bool whenFitting;
  std::string_view issue;
};
constexpr std::array expectations{
    Expectation{"delay", "totalSeconds", true, "unknownParameter .parameters.totalSeconds"},
    Expectation{"waitToLoad", "seconds", true, "unknownParameter .parameters.seconds"},
    Expectation{"builtIn", "command", false, "missingRequiredField .parameters.command"},
    Expectation{"delay", "seconds", false, "missingRequiredField .parameters.seconds"},
    Expectation{"waitToLoad", "totalSeconds", false,
                "missingRequiredField .parameters.totalSeconds"},
    Expectation{"drag", "mode", false, "missingRequiredField .parameters.mode"},
    Expectation{"drag", "what", false, "missingRequiredField .parameters.what"},
};

std::string expectedIssue(const SoundStep& step, const Parameter& parameter, Value value) {
  for (const auto& expectation : expectations) {
    if (expectation.type == step.type && expectation.key == parameter.key &&
        (expectation.whenFitting || value != Value::fitting)) {
      return std::string(expectation.issue);
    }
  }
  return "";
}

/// What is said about the step itself, without that its type belongs elsewhere.
std::string issueOf(const SoundStep& step, const Parameter& parameter, Value value) {
  AnyCodable all = readJson(step.parameters);
  std::get<JsonObject>(all.value()).set(parameter.key, readJson(valueText(parameter, value)));
  const std::string json = std::string(R"({"type":")").append(step.type) + "\"," +
                           std::string(step.members) + R"(,"parameters":)" + toJson(all) + "}";
  std::string said;
  constexpr std::string_view place = "tests[0].interactions[2]";
  for (const auto& issue : TestValidator::validate(Payloads::withStep(json)).issues) {
    if (issue.code == ValidationIssue::Code::compositionOnly) continue;
    EXPECT_TRUE(issue.path.starts_with(place)) << issue.path;
    said += (said.empty() ? "" : " and ") + std::string(rawValue(issue.code)) + " " +
            issue.path.substr(place.size());
  }
  return said;
}

TEST(StrayParameterTest, EveryTypeTakesEveryParameterAsItsRulesSay) {
  int combinations = 0;
  for (const auto& step : soundSteps) {
    for (const auto& parameter : parameters) {
      for (const Value value : {Value::fitting, Value::otherType, Value::null}) {
        EXPECT_EQ(issueOf(step, parameter, value), expectedIssue(step, parameter, value))
            << step.type << " with " << parameter.key << " = " << valueText(parameter, value);
        ++combinations;
      }
    }
  }
  EXPECT_EQ(combinations, 429);
}

}  // namespace
}  // namespace corvane::testing
