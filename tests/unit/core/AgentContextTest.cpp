#include "CorvaneCore/workspace/AgentContext.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullText =
    R"({"appVersion":"2.1","currentProjectName":"Shop",)"
    R"("device":{"connected":true,"name":"iPhone 15","platform":"ios","state":"booted","udid":"D1"},)"
    R"("projects":[{"androidBuildConfigured":false,"applicationId":"com.example.shop",)"
    R"("buildBeforeScheduledRuns":true,"bundleIdentifier":"com.example.shop",)"
    R"("iosBuildConfigured":true,"name":"Shop","platform":"ios",)"
    R"("suites":[{"name":"Smoke","testIds":["t1"]}],)"
    R"("tests":[{"autoScaffold":true,"description":"Logs in","flakinessScore":0.25,"id":"t1",)"
    R"("isFlaky":false,"lastFailure":{"errorMessage":"not found","stepTitle":"Tap"},)"
    R"("name":"Log in","parameterNames":["user"],"steps":[{"children":[{"description":"Tap 'OK'",)"
    R"("previousStepCondition":"previousFailed","type":"tap"}],"description":"Tap 'Log in'",)"
    R"("previousStepCondition":"previousSucceeded","type":"tap"}],"verified":true}],)"
    R"("worldMap":"Home → Cart"}],"schemaVersion":1,"updatedAt":"2025-03-01T09:30:00Z",)"
    R"("userDefinedInteractions":[{"id":"u1","name":"login","parameterNames":["user"],)"
    R"("sourceProjectName":"Shop","steps":[{"description":"Tap 'OK'","type":"tap"}]}]})";

constexpr const char* leastText =
    R"({"projects":[],"schemaVersion":1,"updatedAt":"2025-03-01T09:30:00Z"})";

TEST(AgentContextTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentContext>(
      fullText,
      {
          {"appVersion", "a string", optional},
          {"currentProjectName", "a string", optional},
          {"device", "an object", optional},
          {"device.connected", "a boolean", required},
          {"device.name", "a string", required},
          {"device.platform", "a string", required},
          {"device.state", "a string", required},
          {"device.udid", "a string", optional},
          {"projects", "an array", required},
          {"projects[0]", "an object", entry},
          {"projects[0].androidBuildConfigured", "a boolean", optional},
          {"projects[0].applicationId", "a string", optional},
          {"projects[0].buildBeforeScheduledRuns", "a boolean", optional},
          {"projects[0].bundleIdentifier", "a string", optional},
          {"projects[0].iosBuildConfigured", "a boolean", optional},
          {"projects[0].name", "a string", required},
          {"projects[0].platform", "a string", optional},
          {"projects[0].suites", "an array", required},
          {"projects[0].suites[0]", "an object", entry},
          {"projects[0].suites[0].name", "a string", required},
          {"projects[0].suites[0].testIds", "an array", required},
          {"projects[0].suites[0].testIds[0]", "a string", entry},
          {"projects[0].tests", "an array", required},
          {"projects[0].tests[0]", "an object", entry},
          {"projects[0].tests[0].autoScaffold", "a boolean", optional},
          {"projects[0].tests[0].description", "a string", optional},
          {"projects[0].tests[0].flakinessScore", "a number", optional},
          {"projects[0].tests[0].id", "a string", required},
          {"projects[0].tests[0].isFlaky", "a boolean", optional},
          {"projects[0].tests[0].lastFailure", "an object", optional},
          {"projects[0].tests[0].lastFailure.errorMessage", "a string", optional},
          {"projects[0].tests[0].lastFailure.stepTitle", "a string", required},
          {"projects[0].tests[0].name", "a string", required},
          {"projects[0].tests[0].parameterNames", "an array", optional},
          {"projects[0].tests[0].parameterNames[0]", "a string", entry},
          {"projects[0].tests[0].steps", "an array", required},
          {"projects[0].tests[0].steps[0]", "an object", entry},
          {"projects[0].tests[0].steps[0].children", "an array", optional},
          {"projects[0].tests[0].steps[0].children[0]", "an object", entry},
          {"projects[0].tests[0].steps[0].children[0].description", "a string", required},
          {"projects[0].tests[0].steps[0].children[0].previousStepCondition", "a string", optional},
          {"projects[0].tests[0].steps[0].children[0].type", "a string", required},
          {"projects[0].tests[0].steps[0].description", "a string", required},
          {"projects[0].tests[0].steps[0].previousStepCondition", "a string", optional},
          {"projects[0].tests[0].steps[0].type", "a string", required},
          {"projects[0].tests[0].verified", "a boolean", optional},
          {"projects[0].worldMap", "a string", optional},
          {"schemaVersion", "an integer", required},
          {"updatedAt", "a date", required},
          {"userDefinedInteractions", "an array", optional},
          {"userDefinedInteractions[0]", "an object", entry},
          {"userDefinedInteractions[0].id", "a string", required},
          {"userDefinedInteractions[0].name", "a string", required},
          {"userDefinedInteractions[0].parameterNames", "an array", optional},
          {"userDefinedInteractions[0].parameterNames[0]", "a string", entry},
          {"userDefinedInteractions[0].sourceProjectName", "a string", optional},
          {"userDefinedInteractions[0].steps", "an array", required},
          {"userDefinedInteractions[0].steps[0]", "an object", entry},
          {"userDefinedInteractions[0].steps[0].description", "a string", required},
          {"userDefinedInteractions[0].steps[0].type", "a string", required},
      });
}

TEST(AgentContextTest, NoProjectsIsEnough) {
  const auto context = AgentWire::decode<AgentContext>(leastText);
  EXPECT_TRUE(context.projects.empty());
  EXPECT_EQ(AgentWire::encode(context), leastText);
  EXPECT_EQ(AgentContext::currentSchemaVersion, 1);
}

TEST(AgentContextTest, ATestThatNeverRanKeepsItsOutcomeAbsent) {
  const char* text = R"({"id":"t1","name":"New","steps":[]})";
  const auto test = AgentWire::decode<AgentContext::TestContext>(text);
  EXPECT_FALSE(test.verified);
  EXPECT_FALSE(test.flakinessScore);
  EXPECT_FALSE(test.isFlaky);
  EXPECT_FALSE(test.lastFailure);
  EXPECT_EQ(AgentWire::encode(test), text);
}

TEST(AgentContextTest, DatesAreInWholeSeconds) {
  const auto withDate = [](std::string_view date) {
    return R"({"projects":[],"schemaVersion":1,"updatedAt":")" + std::string(date) + R"("})";
  };
  EXPECT_EQ(
      AgentWire::encode(AgentWire::decode<AgentContext>(withDate("2025-03-01T10:30:00+01:00"))),
      leastText);
  EXPECT_EQ(errorText<DecodeError>([&] {
              (void)AgentWire::decode<AgentContext>(withDate("2025-03-01T09:30:00.123Z"));
            }),
            "updatedAt: expected an ISO 8601 date-time in whole seconds");
}

TEST(AgentContextTest, NestedChildrenSurvive) {
  std::string text = R"({"description":"leaf","type":"tap"})";
  for (int level = 0; level < 50; ++level) {
    text = R"({"children":[)" + text + "," + R"({"children":[],"description":"","type":""})" +
           R"(],"description":"d","previousStepCondition":"previousFailed","type":"runTest"})";
  }
  const auto step = AgentWire::decode<AgentContext::StepSummary>(text);
  EXPECT_EQ(step.children->size(), 2U);
  EXPECT_EQ(AgentWire::encode(step), text);
}

TEST(AgentContextTest, NewerVersionsAreReadWithoutWhatTheyAdded) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AgentContext>(
                R"({"news":{"a":[]},"projects":[],"schemaVersion":2,)"
                R"("updatedAt":"2025-03-01T09:30:00Z"})")),
            R"({"projects":[],"schemaVersion":2,"updatedAt":"2025-03-01T09:30:00Z"})");
}

TEST(AgentContextTest, ArraysKeepTheirOrder) {
  const char* text = R"({"name":"Smoke","testIds":["b","a","c","a"]})";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AgentContext::SuiteContext>(text)), text);
}

TEST(AgentContextTest, WritesAndReadsItsFile) {
  const TemporaryHome home;
  AgentWire::decode<AgentContext>(fullText).write(home.paths());
  const auto file = home.path() / ".local/share/Corvane/AgentMCP/context.json";
  EXPECT_EQ(readFile(file), fullText);
  EXPECT_EQ(AgentWire::encode(AgentContext::read(file)), fullText);
  EXPECT_EQ(listVisible(home.paths().agentMCPDirectory()).size(), 1U);
}

TEST(AgentContextTest, ReadErrorsAreThrown) {
  const TemporaryHome home;
  const auto file = home.paths().agentContextFile();
  EXPECT_THROW((void)AgentContext::read(file), FileError);
  writeFileWhole(file, "");
  EXPECT_THROW((void)AgentContext::read(file), DecodeError);
  writeFileWhole(file, R"({"schemaVersion":1,"updatedAt":"2025-03-01T09:30:00Z"})");
  EXPECT_EQ(errorText<DecodeError>([&] { (void)AgentContext::read(file); }), "projects: required");
}

}  // namespace
}  // namespace corvane::testing
