#include <gtest/gtest.h>

#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

using Payloads::look;
using Payloads::open;
using Payloads::terminate;

AgentTest soundTest(std::int64_t index = 0) {
  AgentTest test = Payloads::test({terminate, open, look, terminate});
  test.index = index;
  return test;
}

AgentTest branchingTest() {
  AgentTest test = soundTest();
  test.interactions[2].children = {
      Payloads::step(R"({"type":"runTest","description":"","referencedTestName":"Log in",)"
                     R"("previousStepCondition":"previousFailed"})")};
  return test;
}

TEST(TestRulesTest, APayloadNeedsATest) {
  EXPECT_EQ(issuesOf(Payloads::ios({})),
            IssueLines{"error missingTests tests: 'tests' array is empty. Provide at least one "
                       "test."});
}

TEST(TestRulesTest, WithoutTestsThePlatformIsStillChecked) {
  AgentTestSchema payload = Payloads::ios({});
  payload.bundleIdentifier.reset();
  EXPECT_EQ(issuesOf(payload),
            (IssueLines{"error missingRequiredField bundleIdentifier: iOS targets require "
                        "'bundleIdentifier' (e.g. com.example.myapp).",
                        "error missingTests tests: 'tests' array is empty. Provide at least one "
                        "test."}));
}

TEST(TestRulesTest, EveryRepeatedIndexIsWarnedAbout) {
  const auto duplicate = [](const std::string& place, const std::string& index) {
    return "warning duplicateTestIndex " + place + ": Duplicate test index " + index +
           ". Each test should have a unique index.";
  };
  EXPECT_EQ(issuesOf(Payloads::ios({soundTest(0), soundTest(0)})),
            IssueLines{duplicate("tests[1].index", "0")});
  EXPECT_EQ(issuesOf(Payloads::ios({soundTest(-7), soundTest(2), soundTest(-7), soundTest(-7),
                                    soundTest(2), soundTest(3)})),
            (IssueLines{duplicate("tests[2].index", "-7"), duplicate("tests[3].index", "-7"),
                        duplicate("tests[4].index", "2")}));
  EXPECT_EQ(issuesOf(Payloads::ios({soundTest(1), soundTest(0), soundTest(2)})), IssueLines());
  EXPECT_FALSE(TestValidator::validate(Payloads::ios({soundTest(0), soundTest(0)})).hasErrors());
}

TEST(TestRulesTest, ATestNeedsSteps) {
  EXPECT_EQ(issuesOf(Payloads::ios({Payloads::emptyTest("Log in")})),
            IssueLines{"error emptyInteractionsArray tests[0].interactions: Test 'Log in' has no "
                       "interactions."});
}

TEST(TestRulesTest, SelfHealingIsOffOrForTheFullTest) {
  for (const char* mode : {"off", "fullTest"}) {
    AgentTest test = soundTest();
    test.selfHealingMode = mode;
    EXPECT_EQ(issuesOf(Payloads::ios({test})), IssueLines()) << mode;
  }
  for (const char* mode : {"perStep", "Off", "fulltest", ""}) {
    AgentTest test = soundTest();
    test.selfHealingMode = mode;
    EXPECT_EQ(issuesOf(Payloads::ios({test})),
              IssueLines{"error invalidEnumValue tests[0].selfHealingMode: selfHealingMode must be "
                         "'off' or 'fullTest'. ('perStep' is editor-only — per-step healing flags "
                         "are not on the wire.) → \"fullTest\""})
        << mode;
  }
}

TEST(TestRulesTest, ATestThatBranchesShouldHealItself) {
  const IssueLines warning{
      "warning invalidConditionalStructure tests[0].selfHealingMode: This test branches on state "
      "(a router/state-aware prerequisite) but has self-healing off. Routers are the resilience "
      "layer — consider selfHealingMode 'fullTest' so it absorbs ambient-state drift while the "
      "feature tests it composes stay strict. → \"fullTest\""};
  AgentTest test = branchingTest();
  EXPECT_EQ(issuesOf(Payloads::ios({test})), warning);
  test.selfHealingMode = "off";
  EXPECT_EQ(issuesOf(Payloads::ios({test})), warning);
  test.selfHealingMode = "fullTest";
  EXPECT_EQ(issuesOf(Payloads::ios({test})), IssueLines());
}

TEST(TestRulesTest, AnEmptyBranchIsNone) {
  AgentTest test = soundTest();
  test.interactions[2].children.emplace();
  EXPECT_EQ(issuesOf(Payloads::ios({test})), IssueLines());
}

TEST(TestRulesTest, AnInvalidModeOfATestThatBranchesIsReportedOnce) {
  AgentTest test = branchingTest();
  test.selfHealingMode = "perStep";
  const auto issues = issuesOf(Payloads::ios({test}));
  ASSERT_EQ(issues.size(), 1U);
  EXPECT_TRUE(issues[0].starts_with("error invalidEnumValue tests[0].selfHealingMode: "));
}

TEST(TestRulesTest, ErrorsAreTheIssuesThatAreNoWarnings) {
  AgentTest test = branchingTest();
  test.interactions[2].description = "no quotes";
  const auto result = TestValidator::validate(Payloads::ios({test}));
  ASSERT_EQ(result.issues.size(), 2U);
  ASSERT_EQ(result.errors().size(), 1U);
  EXPECT_EQ(result.errors()[0].code, ValidationIssue::Code::missingQuotedUiText);
  EXPECT_TRUE(result.hasErrors());
}

/// Within a test: the index, the bookends, each step with its children, then self-healing. Tests
/// follow each other, and the platform comes before them all.
TEST(TestRulesTest, IssuesStandInTheOrderOfTheRules) {
  AgentTest first = Payloads::test(
      {R"({"type":"tap","description":"x"})",
       R"({"type":"builtIn","description":"Shop","parameters":{"command":"openApplication"},)"
       R"("previousStepCondition":"previousFailed","children":[)"
       R"({"type":"userDefined","description":""}]})",
       R"({"type":"what","description":""})"});
  first.selfHealingMode = "off";
  AgentTest second = soundTest();
  second.selfHealingMode = "perStep";
  AgentTestSchema payload = Payloads::ios({first, second});
  payload.applicationId = "com.example.shop";
  payload.iosProjectPath.reset();

  IssueLines places;
  for (const auto& line : issuesOf(payload)) places.push_back(line.substr(0, line.find(": ")));
  const std::string steps = "tests[0].interactions";
  EXPECT_EQ(places,
            (IssueLines{
                "error missingRequiredField iosProjectPath",
                "warning platformFieldMismatch androidProjectPath",
                "error missingFirstInteraction " + steps + "[0]",
                "error wrongAppNamePlaceholder " + steps + "[1].description",
                "error missingLastInteraction " + steps + "[2]",
                "error compositionOnly " + steps + "[0].type",
                "error missingQuotedUiText " + steps + "[0].description",
                "error wrongAppNamePlaceholder " + steps + "[1].description",
                "error invalidConditionalStructure " + steps + "[1].previousStepCondition",
                "error invalidConditionalStructure " + steps + "[1].children",
                "error invalidConditionalStructure " + steps + "[1].children[0].type",
                "error missingRequiredField " + steps + "[1].children[0].previousStepCondition",
                "error missingRequiredField " + steps + "[1].children[0].udiName",
                "error unknownInteractionType " + steps + "[2].type",
                "warning invalidConditionalStructure tests[0].selfHealingMode",
                "warning duplicateTestIndex tests[1].index",
                "error invalidEnumValue tests[1].selfHealingMode",
            }));
}

using Payloads::look;
using Payloads::open;
using Payloads::terminate;

const std::string iosPath =
    "error missingRequiredField iosProjectPath: iOS targets require 'iosProjectPath' when Corvane "
    "builds. To run a binary already installed on the simulator — your own build, or a "
    "preinstalled "
    "system app like com.apple.Maps — pass buildFirst:false and omit the path.";
const std::string iosIdentifier =
    "error missingRequiredField bundleIdentifier: iOS targets require 'bundleIdentifier' (e.g. "
    "com.example.myapp).";
const std::string androidFields =
    "warning platformFieldMismatch androidProjectPath: Android fields are ignored when "
    "targetPlatform is iOS.";
const std::string androidPath =
    "error missingRequiredField androidProjectPath: Android targets require 'androidProjectPath' "
    "when Corvane builds. To run an APK already installed on the emulator — your own build, or a "
    "preinstalled app — pass buildFirst:false and omit the path.";
const std::string androidIdentifier =
    "error missingRequiredField applicationId: Android targets require 'applicationId' (e.g. "
    "com.example.myapp).";

AgentTestSchema ios() {
  return Payloads::ios({Payloads::test({terminate, open, look, terminate})});
}

AgentTestSchema android() {
  return Payloads::android({Payloads::test({terminate, open, look, terminate})});
}

TEST(PlatformRulesTest, CompletePayloadsAreSound) {
  EXPECT_EQ(issuesOf(ios()), IssueLines());
  EXPECT_EQ(issuesOf(android()), IssueLines());
}

TEST(PlatformRulesTest, IosNeedsItsPathOnlyToBuild) {
  for (const std::optional<std::string>& path : {std::optional<std::string>(), {""}}) {
    for (const std::optional<bool> buildFirst : {std::optional<bool>(), {true}}) {
      AgentTestSchema payload = ios();
      payload.iosProjectPath = path;
      payload.buildFirst = buildFirst;
      EXPECT_EQ(issuesOf(payload), IssueLines{iosPath});
      payload.buildFirst = false;
      EXPECT_EQ(issuesOf(payload), IssueLines());
    }
  }
}

TEST(PlatformRulesTest, IosAlwaysNeedsItsIdentifier) {
  AgentTestSchema payload = ios();
  payload.bundleIdentifier.reset();
  EXPECT_EQ(issuesOf(payload), IssueLines{iosIdentifier});
  payload.bundleIdentifier = "";
  payload.buildFirst = false;
  EXPECT_EQ(issuesOf(payload), IssueLines{iosIdentifier});
}

TEST(PlatformRulesTest, AndroidFieldsDrawOneWarningOnIosEvenWhenEmpty) {
  AgentTestSchema payload = ios();
  payload.androidProjectPath = "";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
  payload.applicationId = "com.example.shop";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
  payload.androidProjectPath.reset();
  payload.applicationId = "";
  EXPECT_EQ(issuesOf(payload), IssueLines{androidFields});
}

TEST(PlatformRulesTest, AndroidNeedsItsPathOnlyToBuild) {
  for (const std::optional<std::string>& path : {std::optional<std::string>(), {""}}) {
    for (const std::optional<bool> buildFirst : {std::optional<bool>(), {true}}) {
      AgentTestSchema payload = android();
      payload.androidProjectPath = path;
      payload.buildFirst = buildFirst;
      EXPECT_EQ(issuesOf(payload), IssueLines{androidPath});
      payload.buildFirst = false;
      EXPECT_EQ(issuesOf(payload), IssueLines());
    }
  }
}

TEST(PlatformRulesTest, AndroidAlwaysNeedsItsIdentifier) {
  AgentTestSchema payload = android();
  payload.applicationId.reset();
  EXPECT_EQ(issuesOf(payload), IssueLines{androidIdentifier});
  payload.applicationId = "";
  payload.buildFirst = false;
  EXPECT_EQ(issuesOf(payload), IssueLines{androidIdentifier});
}

TEST(PlatformRulesTest, IosFieldsDrawNoWarningOnAndroid) {
  AgentTestSchema payload = android();
  payload.iosProjectPath = "/src/shop";
  payload.bundleIdentifier = "com.example.shop";
  EXPECT_EQ(issuesOf(payload), IssueLines());
}

TEST(PlatformRulesTest, OnlyExactlyAndroidIsAndroid) {
  for (const char* platform : {"iOS", "Android", "ANDROID", " android", "web", ""}) {
    AgentTestSchema payload = android();
    payload.targetPlatform = platform;
    EXPECT_EQ(issuesOf(payload), (IssueLines{iosPath, iosIdentifier, androidFields})) << platform;
  }
}

TEST(PlatformRulesTest, IssuesStandInTheOrderOfTheRules) {
  AgentTestSchema payload = android();
  payload.applicationId.reset();
  payload.androidProjectPath.reset();
  EXPECT_EQ(issuesOf(payload), (IssueLines{androidPath, androidIdentifier}));
}

}  // namespace
}  // namespace corvane::testing
