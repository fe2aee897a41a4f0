#include <gtest/gtest.h>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullContext =
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

constexpr const char* leastContext =
    R"({"projects":[],"schemaVersion":1,"updatedAt":"2025-03-01T09:30:00Z"})";

TEST(AgentContextTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentContext>(
      fullContext,
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
  const auto context = AgentWire::decode<AgentContext>(leastContext);
  EXPECT_TRUE(context.projects.empty());
  EXPECT_EQ(AgentWire::encode(context), leastContext);
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
      leastContext);
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
  AgentWire::decode<AgentContext>(fullContext).write(home.paths());
  const auto file = home.path() / ".local/share/Corvane/AgentMCP/context.json";
  EXPECT_EQ(readFile(file), fullContext);
  EXPECT_EQ(AgentWire::encode(AgentContext::read(file)), fullContext);
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

constexpr const char* fullActivity =
    R"({"active":{"kind":"run","requestId":"r1","startedAt":"2026-01-31T11:59:00Z"},)"
    R"("authoringActive":true,"device":{"connected":true,"name":"iPhone 17","platform":"ios"},)"
    R"("queued":[{"kind":"exploration","position":1,"requestId":"r2"}],"schedulerBusy":false,)"
    R"("schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z"})";

constexpr const char* idleText =
    R"({"authoringActive":false,"queued":[],"schedulerBusy":false,"schemaVersion":1,)"
    R"("updatedAt":"2026-01-31T12:00:00Z"})";

TEST(AgentActivityTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentActivity>(fullActivity, {
                                                     {"active", "an object", optional},
                                                     {"active.kind", "a string", required},
                                                     {"active.requestId", "a string", required},
                                                     {"active.startedAt", "a date", required},
                                                     {"authoringActive", "a boolean", required},
                                                     {"device", "an object", optional},
                                                     {"device.connected", "a boolean", required},
                                                     {"device.name", "a string", optional},
                                                     {"device.platform", "a string", required},
                                                     {"queued", "an array", required},
                                                     {"queued[0]", "an object", entry},
                                                     {"queued[0].kind", "a string", required},
                                                     {"queued[0].position", "an integer", required},
                                                     {"queued[0].requestId", "a string", required},
                                                     {"schedulerBusy", "a boolean", required},
                                                     {"schemaVersion", "an integer", required},
                                                     {"updatedAt", "a date", required},
                                                 });
}

TEST(AgentActivityTest, FieldsStandUnderTheirKeys) {
  const AgentActivity activity{
      .updatedAt = *parseDate("2026-01-31T12:00:00Z"),
      .active = {{"r1", "run", *parseDate("2026-01-31T11:59:00Z")}},
      .queued = {{"r2", "exploration", 1}},
      .schedulerBusy = false,
      .authoringActive = true,
      .device = {{"ios", "iPhone 17", true}},
  };
  EXPECT_EQ(AgentWire::encode(activity), fullActivity);
}

TEST(AgentActivityTest, NothingActiveMayBeSaidEitherWay) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AgentActivity>(idleText)), idleText);
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AgentActivity>(
                R"({"active":null,"authoringActive":false,"device":null,"queued":[],)"
                R"("schedulerBusy":false,"schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z"})")),
            idleText);
}

TEST(AgentActivityTest, WritingCreatesTheFolderAndReadsBack) {
  const TemporaryHome home;
  AgentWire::decode<AgentActivity>(fullActivity).write(home.paths());
  const auto file = home.path() / ".local/share/Corvane/AgentMCP/activity.json";
  EXPECT_EQ(TestFiles::read(file), fullActivity);
  const auto read = AgentActivity::read(home.paths());
  ASSERT_TRUE(read);
  EXPECT_EQ(AgentWire::encode(*read), fullActivity);
}

TEST(AgentActivityTest, WhatCannotBeReadIsNothing) {
  const TemporaryHome home;
  EXPECT_FALSE(AgentActivity::read(home.paths()));
  const auto file = home.paths().agentActivityFile();
  for (const char* text :
       {"", "{", "[]", R"({"schemaVersion":1})",
        R"({"authoringActive":false,"queued":[],"schedulerBusy":false,"schemaVersion":1,)"
        R"("updatedAt":"2026-01-31T12:00:00.5Z"})"}) {
    TestFiles::write(file, text);
    EXPECT_FALSE(AgentActivity::read(home.paths())) << text;
  }
  std::filesystem::remove(file);
  std::filesystem::create_directory(file);
  EXPECT_FALSE(AgentActivity::read(home.paths()));
}

TEST(AgentActivityTest, AFailedWriteIsThrown) {
  const TemporaryHome home;
  TestFiles::write(home.path() / ".local", "in the way");
  EXPECT_THROW(AgentWire::decode<AgentActivity>(idleText).write(home.paths()), FileError);
}

}  // namespace
}  // namespace corvane::testing
