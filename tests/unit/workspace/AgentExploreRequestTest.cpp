#include "CorvaneCore/requests/Requests.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";

constexpr const char* fullText =
    R"({"androidProjectPath":"/src/shop-android","applicationId":"com.example.shop",)"
    R"("bundleIdentifier":"com.example.Shop","clientName":"agent/1",)"
    R"("createdAt":"2026-01-31T12:00:00Z","goal":"1. Sign in\n2. Tabs",)"
    R"("iosProjectPath":"/src/shop","maxCreditSpend":99.5,"projectName":"Shop",)"
    R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","resumeFromTestId":"t1",)"
    R"("resumeFromTestName":"Log in","schemaVersion":3,"targetPlatform":"iOS",)"
    R"("testName":"Tabs load"})";

AgentExploreRequest leastRequest() {
  AgentExploreRequest request;
  request.requestId = id;
  request.projectName = "Shop";
  request.goal = "Visit each tab";
  request.createdAt = *parseDate("2026-01-31T12:00:00Z");
  return request;
}

TEST(AgentExploreRequestTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentExploreRequest>(fullText, {
                                                       {"androidProjectPath", "a string", optional},
                                                       {"applicationId", "a string", optional},
                                                       {"bundleIdentifier", "a string", optional},
                                                       {"clientName", "a string", optional},
                                                       {"createdAt", "a date", required},
                                                       {"goal", "a string", required},
                                                       {"iosProjectPath", "a string", optional},
                                                       {"maxCreditSpend", "a number", optional},
                                                       {"projectName", "a string", required},
                                                       {"requestId", "a string", required},
                                                       {"resumeFromTestId", "a string", optional},
                                                       {"resumeFromTestName", "a string", optional},
                                                       {"schemaVersion", "an integer", required},
                                                       {"targetPlatform", "a string", optional},
                                                       {"testName", "a string", optional},
                                                   });
}

TEST(AgentExploreRequestTest, FieldsStandUnderTheirKeys) {
  const AgentExploreRequest request{.requestId = id,
                                    .projectName = "Shop",
                                    .goal = "1. Sign in\n2. Tabs",
                                    .testName = "Tabs load",
                                    .targetPlatform = "iOS",
                                    .maxCreditSpend = 99.5,
                                    .clientName = "agent/1",
                                    .resumeFromTestId = "t1",
                                    .resumeFromTestName = "Log in",
                                    .iosProjectPath = "/src/shop",
                                    .bundleIdentifier = "com.example.Shop",
                                    .androidProjectPath = "/src/shop-android",
                                    .applicationId = "com.example.shop",
                                    .createdAt = *parseDate("2026-01-31T12:00:00Z")};
  EXPECT_EQ(AgentWire::encode(request), fullText);
  EXPECT_EQ(AgentExploreRequest::currentSchemaVersion, 3);
}

TEST(AgentExploreRequestTest, FieldsWithoutAValueAreLeftOut) {
  EXPECT_EQ(AgentWire::encode(leastRequest()),
            R"({"createdAt":"2026-01-31T12:00:00Z","goal":"Visit each tab","projectName":"Shop",)"
            R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":3})");
}

TEST(AgentExploreRequestTest, TheFileIsNamedAfterTheIdAndReadsBack) {
  const TemporaryHome home;
  AgentWire::decode<AgentExploreRequest>(fullText).write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345"
                    ".explorerequest.json";
  EXPECT_EQ(AgentExploreRequest::fileURL(id, home.paths()), file);
  EXPECT_EQ(TestFiles::read(file), fullText);
  EXPECT_EQ(AgentWire::encode(AgentExploreRequest::read(file)), fullText);
}

TEST(AgentExploreRequestTest, ReadAndWriteErrorsAreThrown) {
  const TemporaryHome home;
  const auto file = home.path() / "file";
  EXPECT_THROW((void)AgentExploreRequest::read(file), FileError);
  TestFiles::write(file, "{");
  EXPECT_THROW((void)AgentExploreRequest::read(file), DecodeError);
  TestFiles::write(home.path() / ".local", "in the way");
  EXPECT_THROW(leastRequest().write(home.paths()), FileError);
}

}  // namespace
}  // namespace corvane::testing
