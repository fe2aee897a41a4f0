#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/requests/Requests.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

using Target = AgentRunRequest::Target;

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";

constexpr const char* fullRun =
    R"({"buildFirst":false,"clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z",)"
    R"("params":{"password":"p","user":"me"},"projectName":"Shop",)"
    R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":1,"simulatorUDID":"UDID-1",)"
    R"("target":{"testNames":["Log in","Log out"],"type":"testsByName"},"targetPlatform":"ios"})";

AgentRunRequest leastRequest(Target target) {
  AgentRunRequest request;
  request.requestId = id;
  request.projectName = "Shop";
  request.target = std::move(target);
  request.createdAt = *parseDate("2026-01-31T12:00:00Z");
  return request;
}

Target testsNamed(std::vector<std::string> names) {
  return {Target::TestsByName{std::move(names)}};
}
Target suiteNamed(std::string name) {
  return {Target::SuiteByName{std::move(name)}};
}
Target allSuites() {
  return {Target::AllSuites{}};
}

TEST(AgentRunRequestTest, EveryMemberFollowsItsRule) {
  expectRecordRules<AgentRunRequest>(fullRun,
                                     {
                                         {"buildFirst", "a boolean", Presence::optional},
                                         {"clientName", "a string", Presence::optional},
                                         {"createdAt", "a date", Presence::required},
                                         {"params", "an object", Presence::optional},
                                         {"params.password", "a string", Presence::entry},
                                         {"params.user", "a string", Presence::entry},
                                         {"projectName", "a string", Presence::required},
                                         {"requestId", "a string", Presence::required},
                                         {"schemaVersion", "an integer", Presence::required},
                                         {"simulatorUDID", "a string", Presence::optional},
                                         {"target", "an object", Presence::required},
                                         {"target.testNames", "an array", Presence::required},
                                         {"target.testNames[0]", "a string", Presence::entry},
                                         {"target.testNames[1]", "a string", Presence::entry},
                                         {"target.type", "a string", Presence::required},
                                         {"targetPlatform", "a string", Presence::optional},
                                     });
}

TEST(AgentRunRequestTest, FieldsStandUnderTheirKeys) {
  const AgentRunRequest request{.requestId = id,
                                .projectName = "Shop",
                                .target = testsNamed({"Log in", "Log out"}),
                                .params = {{{"user", "me"}, {"password", "p"}}},
                                .buildFirst = false,
                                .targetPlatform = "ios",
                                .clientName = "agent/1",
                                .createdAt = *parseDate("2026-01-31T12:00:00Z"),
                                .simulatorUDID = "UDID-1"};
  EXPECT_EQ(AgentWire::encode(request), fullRun);
}

TEST(AgentRunRequestTest, FieldsWithoutAValueAreLeftOut) {
  EXPECT_EQ(AgentWire::encode(leastRequest(allSuites())),
            R"({"createdAt":"2026-01-31T12:00:00Z","projectName":"Shop",)"
            R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":1,)"
            R"("target":{"type":"allSuites"}})");
  auto request = leastRequest(suiteNamed("Smoke/iOS"));
  request.params.emplace();
  request.buildFirst = true;
  EXPECT_EQ(AgentWire::encode(request),
            R"({"buildFirst":true,"createdAt":"2026-01-31T12:00:00Z","params":{},)"
            R"("projectName":"Shop","requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
            R"("schemaVersion":1,"target":{"suiteName":"Smoke/iOS","type":"suiteByName"}})");
}

TEST(AgentRunRequestTest, EachTargetHasItsForm) {
  for (const char* text :
       {R"({"testNames":[],"type":"testsByName"})", R"({"testNames":["A"],"type":"testsByName"})",
        R"({"suiteName":"S","type":"suiteByName"})", R"({"type":"allSuites"})"}) {
    EXPECT_EQ(AgentWire::encode(AgentWire::decode<Target>(text)), text);
  }
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Target>(
                R"({"suiteName":7,"testNames":null,"type":"allSuites","x":1})")),
            R"({"type":"allSuites"})");
}

TEST(AgentRunRequestTest, ATargetThatDoesNotFitFails) {
  const auto error = [](std::string_view text) {
    return errorText<DecodeError>([&] { (void)AgentWire::decode<Target>(text); });
  };
  EXPECT_EQ(error(R"({"type":"testsByName"})"), "testNames: required");
  EXPECT_EQ(error(R"({"type":"testsByName","testNames":null})"), "testNames: expected an array");
  EXPECT_EQ(error(R"({"type":"testsByName","suiteName":"S"})"), "testNames: required");
  EXPECT_EQ(error(R"({"type":"suiteByName"})"), "suiteName: required");
  EXPECT_EQ(error(R"({"type":"suiteByName","suiteName":["S"]})"), "suiteName: expected a string");
  EXPECT_EQ(error(R"({"type":"everything"})"),
            "type: expected one of testsByName, suiteByName, allSuites");
  EXPECT_EQ(error(R"({"testNames":["A"]})"), "type: required");
}

TEST(AgentRunRequestTest, TargetsAreEqualInCaseAndPayload) {
  EXPECT_EQ(allSuites(), allSuites());
  EXPECT_EQ(testsNamed({"A", "B"}), testsNamed({"A", "B"}));
  EXPECT_NE(testsNamed({"A", "B"}), testsNamed({"B", "A"}));
  EXPECT_NE(testsNamed({"A"}), testsNamed({"a"}));
  EXPECT_NE(testsNamed({}), allSuites());
  EXPECT_EQ(suiteNamed("S"), suiteNamed("S"));
  EXPECT_NE(suiteNamed("S"), suiteNamed("T"));
  EXPECT_NE(suiteNamed(""), allSuites());
  EXPECT_NE(suiteNamed("A"), testsNamed({"A"}));
}

TEST(AgentRunRequestTest, FieldsAreReadInDeclarationOrder) {
  const auto error = [](std::string_view text) {
    return errorText<DecodeError>([&] { (void)AgentWire::decode<AgentRunRequest>(text); });
  };
  EXPECT_EQ(error("{}"), "schemaVersion: required");
  EXPECT_EQ(error(R"({"schemaVersion":1})"), "requestId: required");
  EXPECT_EQ(error(R"({"schemaVersion":1,"requestId":""})"), "projectName: required");
  EXPECT_EQ(error(R"({"schemaVersion":1,"requestId":"","projectName":""})"), "target: required");
  EXPECT_EQ(
      error(R"({"schemaVersion":1,"requestId":"","projectName":"","target":{"type":"allSuites"}})"),
      "createdAt: required");
  EXPECT_EQ(
      error(
          R"({"schemaVersion":1,"requestId":"","projectName":"","target":{"type":"allSuites"},"createdAt":"2026-01-31T12:00:00.5Z"})"),
      "createdAt: expected an ISO 8601 date-time in whole seconds");
}

TEST(AgentRunRequestTest, AnySchemaVersionIsRead) {
  for (const std::int64_t version : {0, 2, -1, 4711}) {
    auto request = leastRequest(allSuites());
    request.schemaVersion = version;
    EXPECT_EQ(AgentWire::decode<AgentRunRequest>(AgentWire::encode(request)).schemaVersion,
              version);
  }
  EXPECT_EQ(AgentRunRequest::currentSchemaVersion, 1);
  EXPECT_EQ(AgentRunRequest().schemaVersion, 1);
}

TEST(AgentRunRequestTest, TheFileIsNamedAfterTheIdAsGiven) {
  const TemporaryHome home;
  const auto folder = home.path() / ".local/share/Corvane/AgentRunRequests";
  EXPECT_EQ(AgentRunRequest::fileURL(id, home.paths()),
            folder / "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.runrequest.json");
  EXPECT_EQ(AgentRunRequest::fileURL("ABC", home.paths()), folder / "ABC.runrequest.json");
}

TEST(AgentRunRequestTest, WritingCreatesTheFolderAndReadsBack) {
  const TemporaryHome home;
  const auto request = AgentWire::decode<AgentRunRequest>(fullRun);
  request.write(home.paths());
  EXPECT_EQ(home.entries(),
            (std::vector<std::string>{".local", ".local/share", ".local/share/Corvane",
                                      ".local/share/Corvane/AgentRunRequests",
                                      ".local/share/Corvane/AgentRunRequests/"
                                      "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.runrequest.json"}));
  const auto file = AgentRunRequest::fileURL(id, home.paths());
  EXPECT_EQ(readFile(file), fullRun);
  EXPECT_EQ(AgentWire::encode(AgentRunRequest::read(file)), fullRun);
}

TEST(AgentRunRequestTest, ReadAndWriteErrorsAreThrown) {
  const TemporaryHome home;
  const auto file = home.path() / "file";
  EXPECT_THROW((void)AgentRunRequest::read(file), FileError);
  writeFileWhole(file, "{");
  EXPECT_THROW((void)AgentRunRequest::read(file), DecodeError);
  writeFileWhole(home.path() / ".local", "in the way");
  EXPECT_THROW(leastRequest(allSuites()).write(home.paths()), FileError);
}

constexpr const char* fullExploration =
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
  expectRecordRules<AgentExploreRequest>(fullExploration,
                                         {
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
  EXPECT_EQ(AgentWire::encode(request), fullExploration);
  EXPECT_EQ(AgentExploreRequest::currentSchemaVersion, 3);
}

TEST(AgentExploreRequestTest, FieldsWithoutAValueAreLeftOut) {
  EXPECT_EQ(AgentWire::encode(leastRequest()),
            R"({"createdAt":"2026-01-31T12:00:00Z","goal":"Visit each tab","projectName":"Shop",)"
            R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":3})");
}

TEST(AgentExploreRequestTest, TheFileIsNamedAfterTheIdAndReadsBack) {
  const TemporaryHome home;
  AgentWire::decode<AgentExploreRequest>(fullExploration).write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345"
                    ".explorerequest.json";
  EXPECT_EQ(AgentExploreRequest::fileURL(id, home.paths()), file);
  EXPECT_EQ(TestFiles::read(file), fullExploration);
  EXPECT_EQ(AgentWire::encode(AgentExploreRequest::read(file)), fullExploration);
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

constexpr const char* fullLibraryRequest =
    R"({"action":"extractUdi","clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z",)"
    R"("fromStep":2,"overwrite":false,"projectName":"Shop",)"
    R"("requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345","schemaVersion":1,"testId":"t1",)"
    R"("testName":"Log in","toStep":4,"udiName":"Sign in"})";

TEST(AgentLibraryRequestTest, EveryMemberFollowsItsRule) {
  using enum Presence;
  expectRecordRules<AgentLibraryRequest>(fullLibraryRequest,
                                         {
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
  EXPECT_EQ(AgentWire::encode(request), fullLibraryRequest);
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
  AgentWire::decode<AgentLibraryRequest>(fullLibraryRequest).write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345"
                    ".libraryrequest.json";
  EXPECT_EQ(AgentLibraryRequest::fileURL(id, home.paths()), file);
  EXPECT_EQ(TestFiles::read(file), fullLibraryRequest);
  EXPECT_EQ(AgentWire::encode(AgentLibraryRequest::read(file)), fullLibraryRequest);
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

constexpr const char* fullMarker =
    R"({"createdAt":"2026-01-31T12:00:00Z","requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
    R"("schemaVersion":1})";

TEST(CancelMarkerTest, EveryMemberFollowsItsRule) {
  expectRecordRules<CancelMarker>(fullMarker,
                                  {
                                      {"createdAt", "a date", Presence::required},
                                      {"requestId", "a string", Presence::required},
                                      {"schemaVersion", "an integer", Presence::required},
                                  });
}

TEST(CancelMarkerTest, IsWrittenBesideTheRequests) {
  const TemporaryHome home;
  const CancelMarker marker{.requestId = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",
                            .createdAt = *parseDate("2026-01-31T12:00:00Z")};
  marker.write(home.paths());
  const auto file = home.path() /
                    ".local/share/Corvane/AgentRunRequests/"
                    "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.cancel";
  EXPECT_EQ(CancelMarker::fileURL(marker.requestId, home.paths()), file);
  EXPECT_EQ(readFile(file), fullMarker);
}

}  // namespace
}  // namespace corvane::testing
