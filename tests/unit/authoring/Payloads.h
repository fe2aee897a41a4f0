#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/TestValidator.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::testing {

/// Payloads as tests need them: sound ones, into which a test puts the one thing it is about.
namespace Payloads {

inline constexpr const char* terminate =
    R"({"type":"builtIn","description":"","parameters":{"command":"terminateApplication"}})";
inline constexpr const char* open =
    R"({"type":"builtIn","description":"{{APP_NAME}}","parameters":{"command":"openApplication"}})";
inline constexpr const char* look = R"({"type":"visualAssert","description":"Do you see 'Home'?"})";

/// The step types, and those that may stand in a branch: what every list of them has to hold.
inline constexpr std::string_view allTypes =
    "tap input visualAssert scroll builtIn delay waitToLoad drag runTest userDefined reuseSteps";
inline constexpr std::string_view branchTypes =
    "tap input visualAssert scroll builtIn delay waitToLoad drag runTest";

/// `words`, which are separated by blanks, separated by something else.
[[nodiscard]] inline std::string listed(std::string_view words, std::string_view separator) {
  std::string list;
  for (const char c : words) c == ' ' ? list.append(separator) : list.append(1, c);
  return list;
}

[[nodiscard]] inline AgentInteraction step(std::string_view json) {
  return decodeValue<AgentInteraction>(readJson(json));
}

[[nodiscard]] inline AgentInteraction bareStep(std::string type) {
  AgentInteraction step;
  step.type = std::move(type);
  return step;
}

[[nodiscard]] inline AgentTest emptyTest(std::string name) {
  AgentTest test;
  test.name = std::move(name);
  return test;
}

[[nodiscard]] inline AgentTest test(const std::vector<std::string_view>& steps) {
  AgentTest test = emptyTest("T");
  for (const auto json : steps) test.interactions.push_back(step(json));
  return test;
}

/// A payload for iOS that Corvane can build.
[[nodiscard]] inline AgentTestSchema ios(std::vector<AgentTest> tests) {
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.iosProjectPath = "/src/shop";
  payload.bundleIdentifier = "com.example.shop";
  payload.createdAt = *parseDate("2026-01-31T12:00:00Z");
  payload.tests = std::move(tests);
  return payload;
}

/// The same for Android.
[[nodiscard]] inline AgentTestSchema android(std::vector<AgentTest> tests) {
  AgentTestSchema payload = ios(std::move(tests));
  payload.iosProjectPath.reset();
  payload.bundleIdentifier.reset();
  payload.targetPlatform = "android";
  payload.androidProjectPath = "/src/shop";
  payload.applicationId = "com.example.shop";
  return payload;
}

/// A sound payload with `json` between the bookends, as tests[0].interactions[2].
[[nodiscard]] inline AgentTestSchema withStep(std::string_view json) {
  return ios({test({terminate, open, json, terminate})});
}

/// A sound payload with `json` as the only child of a step; the test is self-healing, as tests that
/// branch should be. The place is tests[0].interactions[2].children[0].
[[nodiscard]] inline AgentTestSchema withChild(std::string_view json) {
  AgentTestSchema payload = withStep(look);
  payload.tests[0].selfHealingMode = "fullTest";
  payload.tests[0].interactions[2].children = {step(json)};
  return payload;
}

}  // namespace Payloads

/// What the validator says, one "severity code path: message" for each issue, with " → " and the
/// suggestion as JSON where there is one.
using IssueLines = std::vector<std::string>;

[[nodiscard]] inline IssueLines issuesOf(const AgentTestSchema& payload) {
  IssueLines lines;
  for (const auto& issue : TestValidator::validate(payload).issues) {
    std::string line(rawValue(issue.severity));
    line.append(" ").append(rawValue(issue.code)).append(" ").append(issue.path);
    line.append(": ").append(issue.message);
    if (issue.suggestion) line.append(" → ").append(toJson(*issue.suggestion));
    lines.push_back(std::move(line));
  }
  return lines;
}

/// `lines` with `place` written as `name` in their paths.
[[nodiscard]] inline IssueLines abbreviated(IssueLines lines, std::string_view place,
                                            std::string_view name) {
  for (auto& line : lines) {
    const auto at = line.find(place);
    if (at != std::string::npos) line.replace(at, place.size(), name);
  }
  return lines;
}

/// The issues of a payload around the top-level step `json`, whose path is written as R.
[[nodiscard]] inline IssueLines issuesOfStep(std::string_view json) {
  return abbreviated(issuesOf(Payloads::withStep(json)), "tests[0].interactions[2]", "R");
}

/// The issues of a payload around the branch child `json`, whose path is written as C.
[[nodiscard]] inline IssueLines issuesOfChild(std::string_view json) {
  return abbreviated(issuesOf(Payloads::withChild(json)), "tests[0].interactions[2].children[0]",
                     "C");
}

}  // namespace corvane::testing
