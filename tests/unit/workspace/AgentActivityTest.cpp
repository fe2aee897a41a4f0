#include "CorvaneCore/workspace/AgentActivity.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullText =
    R"({"active":{"kind":"run","requestId":"r1","startedAt":"2026-01-31T11:59:00Z"},)"
    R"("authoringActive":true,"device":{"connected":true,"name":"iPhone 17","platform":"ios"},)"
    R"("queued":[{"kind":"exploration","position":1,"requestId":"r2"}],"schedulerBusy":false,)"
    R"("schemaVersion":1,"updatedAt":"2026-01-31T12:00:00Z"})";

constexpr const char* idleText =
    R"({"authoringActive":false,"queued":[],"schedulerBusy":false,"schemaVersion":1,)"
    R"("updatedAt":"2026-01-31T12:00:00Z"})";

TEST(AgentActivityTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentActivity>(fullText, {
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
  EXPECT_EQ(AgentWire::encode(activity), fullText);
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
  AgentWire::decode<AgentActivity>(fullText).write(home.paths());
  const auto file = home.path() / ".local/share/Corvane/AgentMCP/activity.json";
  EXPECT_EQ(TestFiles::read(file), fullText);
  const auto read = AgentActivity::read(home.paths());
  ASSERT_TRUE(read);
  EXPECT_EQ(AgentWire::encode(*read), fullText);
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
