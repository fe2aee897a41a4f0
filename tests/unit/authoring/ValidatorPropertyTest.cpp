#include <gtest/gtest.h>

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

}  // namespace
}  // namespace corvane::testing
