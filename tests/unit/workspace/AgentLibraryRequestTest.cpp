#include "CorvaneCore/requests/Requests.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";

constexpr const char* fullText =
    R"({"action":"extractUdi","clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z",)"
    R"("fromStep":2,"overwrite":false,"projectName":"Shop",)"
    R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":1,"testId":"t1",)"
    R"("testName":"Log in","toStep":4,"udiName":"Sign in"})";

TEST(AgentLibraryRequestTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentLibraryRequest>(fullText, {
                                                       {"action", "a string", required},
                                                       {"clientName", "a string", optional},
                                                       {"createdAt", "a date", required},
                                                       {"fromStep", "an integer", required},
                                                       {"overwrite", "a boolean", optional},
                                                       {"projectName", "a string", required},
                                                       {"requestId", "a string", required},
                                                       {"schemaVersion", "an integer", required},
                                                       {"testId", "a string", optional},
                                                       {"testName", "a string", optional},
                                                       {"toStep", "an integer", required},
                                                       {"udiName", "a string", required},
                                                   });
}

TEST(AgentLibraryRequestTest, FieldsStandUnderTheirKeys) {
  const AgentLibraryRequest request{.requestId = id,
                                    .projectName = "Shop",
                                    .action = AgentLibraryRequest::Action::extractUdi,
                                    .testName = "Log in",
                                    .testId = "t1",
                                    .fromStep = 2,
                                    .toStep = 4,
                                    .udiName = "Sign in",
                                    .overwrite = false,
                                    .clientName = "agent/1",
                                    .createdAt = *parseDate("2026-01-31T12:00:00Z")};
  EXPECT_EQ(AgentWire::encode(request), fullText);
  EXPECT_EQ(AgentLibraryRequest::currentSchemaVersion, 1);
}

TEST(AgentLibraryRequestTest, WhatAnActionDoesNotUseIsEmptyAndNotLeftOut) {
  AgentLibraryRequest request;
  request.requestId = id;
  request.action = AgentLibraryRequest::Action::resetWorldMap;
  request.createdAt = *parseDate("2026-01-31T12:00:00Z");
  EXPECT_EQ(AgentWire::encode(request),
            R"({"action":"resetWorldMap","createdAt":"2026-01-31T12:00:00Z","fromStep":0,)"
            R"("projectName":"","requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
            R"("schemaVersion":1,"toStep":0,"udiName":""})");
}

TEST(AgentLibraryRequestTest, ActionsAreAClosedSet) {
  using Action = AgentLibraryRequest::Action;
  EXPECT_EQ(joinedRawValues<Action>(" "), "extractUdi deleteUdi resetWorldMap");
  EXPECT_FALSE(fromRawValue<Action>("ExtractUdi"));
  EXPECT_EQ(errorText<DecodeError>([] { (void)AgentWire::decode<Action>(R"("renameUdi")"); }),
            "expected one of extractUdi, deleteUdi, resetWorldMap");
}

TEST(AgentLibraryRequestTest, TheFileIsNamedAfterTheIdAndReadsBack) {
  const TemporaryHome home;
  AgentWire::decode<AgentLibraryRequest>(fullText).write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345"
                    ".libraryrequest.json";
  EXPECT_EQ(AgentLibraryRequest::fileURL(id, home.paths()), file);
  EXPECT_EQ(TestFiles::read(file), fullText);
  EXPECT_EQ(AgentWire::encode(AgentLibraryRequest::read(file)), fullText);
}

TEST(AgentLibraryRequestTest, ReadAndWriteErrorsAreThrown) {
  const TemporaryHome home;
  const auto file = home.path() / "file";
  EXPECT_THROW((void)AgentLibraryRequest::read(file), FileError);
  TestFiles::write(file, "{");
  EXPECT_THROW((void)AgentLibraryRequest::read(file), DecodeError);
  TestFiles::write(home.path() / ".local", "in the way");
  EXPECT_THROW(AgentLibraryRequest().write(home.paths()), FileError);
}

}  // namespace
}  // namespace corvane::testing
