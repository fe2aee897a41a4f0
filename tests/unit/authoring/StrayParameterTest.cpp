#include <gtest/gtest.h>

#include <array>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

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
