#include "CorvaneCore/requests/Requests.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

using Target = AgentRunRequest::Target;

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";

constexpr const char* fullText =
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
  expectRecordRules<AgentRunRequest>(fullText,
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
  EXPECT_EQ(AgentWire::encode(request), fullText);
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
  const auto request = AgentWire::decode<AgentRunRequest>(fullText);
  request.write(home.paths());
  EXPECT_EQ(home.entries(),
            (std::vector<std::string>{".local", ".local/share", ".local/share/Corvane",
                                      ".local/share/Corvane/AgentRunRequests",
                                      ".local/share/Corvane/AgentRunRequests/"
                                      "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345.runrequest.json"}));
  const auto file = AgentRunRequest::fileURL(id, home.paths());
  EXPECT_EQ(readFile(file), fullText);
  EXPECT_EQ(AgentWire::encode(AgentRunRequest::read(file)), fullText);
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

}  // namespace
}  // namespace corvane::testing
