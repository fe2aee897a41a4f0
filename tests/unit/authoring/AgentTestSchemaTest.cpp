#include "CorvaneCore/authoring/AgentTestSchema.h"

#include <gtest/gtest.h>

#include "tests/support/TemporaryHome.h"
#include "tests/unit/authoring/Payloads.h"
#include "tests/unit/core/RecordRules.h"

namespace corvane::testing {
namespace {

constexpr const char* fullText =
    R"({"androidProjectPath":"/a","applicationId":"b.c","autoRun":false,"buildFirst":true,)"
    R"("bundleIdentifier":"d.e","clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z",)"
    R"("iosProjectPath":"/f","projectName":"Shop","requestId":"0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",)"
    R"("simulatorUDID":"U","suiteName":"Smoke","targetPlatform":"iOS","tests":[)"
    R"({"description":"g","index":3,"interactions":[{"aiSegmentationMode":"auto",)"
    R"("arguments":{"user":"me"},"children":[{"description":"h","type":"tap"}],"description":"i",)"
    R"("fromStep":1,"memoryEnabled":true,"parameters":{},)"
    R"("previousStepCondition":"previousFailed","referencedTestId":"j","referencedTestName":"k",)"
    R"("title":"l","toStep":2,"type":"no such type","udiName":"m","visualCheckpoint":false}],)"
    R"("name":"n","parameterValues":{"o":"p"},"selfHealingMode":"off"}],"version":1})";

TEST(AgentTestSchemaTest, EveryMemberFollowsItsRule) {
  const auto optionalText = [](std::string_view place) {
    return PlaceRule{place, "a string", Presence::optional};
  };
  expectRecordRules<AgentTestSchema>(
      fullText,
      {
          optionalText("androidProjectPath"),
          optionalText("applicationId"),
          {"autoRun", "a boolean", Presence::optional},
          {"buildFirst", "a boolean", Presence::optional},
          optionalText("bundleIdentifier"),
          optionalText("clientName"),
          {"createdAt", "a date", Presence::required},
          optionalText("iosProjectPath"),
          {"projectName", "a string", Presence::required},
          optionalText("requestId"),
          optionalText("simulatorUDID"),
          optionalText("suiteName"),
          optionalText("targetPlatform"),
          {"tests", "an array", Presence::required},
          {"tests[0]", "an object", Presence::entry},
          optionalText("tests[0].description"),
          {"tests[0].index", "an integer", Presence::required},
          {"tests[0].interactions", "an array", Presence::required},
          {"tests[0].interactions[0]", "an object", Presence::entry},
          optionalText("tests[0].interactions[0].aiSegmentationMode"),
          {"tests[0].interactions[0].arguments", "an object", Presence::optional},
          {"tests[0].interactions[0].arguments.user", "a string", Presence::entry},
          {"tests[0].interactions[0].children", "an array", Presence::optional},
          {"tests[0].interactions[0].children[0]", "an object", Presence::entry},
          {"tests[0].interactions[0].children[0].description", "a string", Presence::required},
          {"tests[0].interactions[0].children[0].type", "a string", Presence::required},
          {"tests[0].interactions[0].description", "a string", Presence::required},
          {"tests[0].interactions[0].fromStep", "an integer", Presence::optional},
          {"tests[0].interactions[0].memoryEnabled", "a boolean", Presence::optional},
          {"tests[0].interactions[0].parameters", "an object", Presence::optional},
          optionalText("tests[0].interactions[0].previousStepCondition"),
          optionalText("tests[0].interactions[0].referencedTestId"),
          optionalText("tests[0].interactions[0].referencedTestName"),
          optionalText("tests[0].interactions[0].title"),
          {"tests[0].interactions[0].toStep", "an integer", Presence::optional},
          {"tests[0].interactions[0].type", "a string", Presence::required},
          optionalText("tests[0].interactions[0].udiName"),
          {"tests[0].interactions[0].visualCheckpoint", "a boolean", Presence::optional},
          {"tests[0].name", "a string", Presence::required},
          {"tests[0].parameterValues", "an object", Presence::optional},
          {"tests[0].parameterValues.o", "a string", Presence::entry},
          optionalText("tests[0].selfHealingMode"),
          {"version", "an integer", Presence::required},
      });
}

TEST(AgentTestSchemaTest, FieldsStandUnderTheirKeys) {
  AgentInteraction child = Payloads::bareStep("tap");
  child.description = "h";
  const AgentInteraction step{.type = "no such type",
                              .title = "l",
                              .description = "i",
                              .parameters = JsonObject(),
                              .aiSegmentationMode = "auto",
                              .memoryEnabled = true,
                              .children = {{child}},
                              .previousStepCondition = "previousFailed",
                              .referencedTestId = "j",
                              .referencedTestName = "k",
                              .arguments = {{{"user", "me"}}},
                              .fromStep = 1,
                              .toStep = 2,
                              .udiName = "m",
                              .visualCheckpoint = false};
  const AgentTest test{.name = "n",
                       .description = "g",
                       .index = 3,
                       .interactions = {step},
                       .parameterValues = {{{"o", "p"}}},
                       .selfHealingMode = "off"};
  const AgentTestSchema payload{.projectName = "Shop",
                                .targetPlatform = "iOS",
                                .iosProjectPath = "/f",
                                .bundleIdentifier = "d.e",
                                .androidProjectPath = "/a",
                                .applicationId = "b.c",
                                .createdAt = *parseDate("2026-01-31T12:00:00Z"),
                                .tests = {test},
                                .autoRun = false,
                                .buildFirst = true,
                                .requestId = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",
                                .suiteName = "Smoke",
                                .clientName = "agent/1",
                                .simulatorUDID = "U"};
  EXPECT_EQ(AgentWire::encode(payload), fullText);
}

TEST(AgentTestSchemaTest, FieldsWithoutAValueAreLeftOut) {
  AgentTestSchema payload;
  payload.projectName = "Shop/2";
  payload.createdAt = *parseDate("2026-01-31T12:00:00Z");
  EXPECT_EQ(
      AgentWire::encode(payload),
      R"({"createdAt":"2026-01-31T12:00:00Z","projectName":"Shop/2","tests":[],"version":1})");
  EXPECT_EQ(AgentWire::encode(Payloads::emptyTest("T")),
            R"({"index":0,"interactions":[],"name":"T"})");
  EXPECT_EQ(AgentWire::encode(Payloads::bareStep("tap")), R"({"description":"","type":"tap"})");
}

TEST(AgentTestSchemaTest, UnknownWordsSurviveDecoding) {
  const auto step = Payloads::step(
      R"({"type":"hover","description":"","parameters":{"command":"fly","regionOfInterest":"left"}})");
  EXPECT_EQ(step.type, "hover");
  EXPECT_EQ(step.knownType(), std::nullopt);
  EXPECT_EQ(*step.parameter<std::string>("command"), "fly");
  EXPECT_EQ(*step.parameter<std::string>("regionOfInterest"), "left");
}

TEST(AgentTestSchemaTest, ParametersAreFreeForm) {
  constexpr const char* text =
      R"({"description":"","parameters":{"a":[1,0.5,null,true,"x",{}],"b":null},"type":"tap"})";
  EXPECT_EQ(AgentWire::encode(Payloads::step(text)), text);
}

TEST(AgentTestSchemaTest, OnlyABuiltInStepHasACommand) {
  EXPECT_EQ(Payloads::step(Payloads::open).command(), BuiltInCommand::openApplication);
  for (const char* other :
       {R"({"type":"tap","description":"","parameters":{"command":"goHome"}})",
        R"({"type":"builtIn","description":"","parameters":{"command":"fly"}})",
        R"({"type":"builtIn","description":"","parameters":{"command":["goHome"]}})",
        R"({"type":"builtIn","description":"","parameters":{}})",
        R"({"type":"builtIn","description":"goHome"})"}) {
    EXPECT_EQ(Payloads::step(other).command(), std::nullopt) << other;
  }
}

TEST(AgentTestSchemaTest, AllInteractionsAreFlatAndInOrder) {
  const auto named = [](const std::string& name) { return Payloads::bareStep(name); };
  AgentInteraction parent = named("b");
  parent.children = {named("b1"), named("b2")};
  parent.children->front().children = {named("never seen")};
  AgentInteraction childless = named("c");
  childless.children.emplace();
  AgentTestSchema payload;
  for (const char* name : {"1", "2", "3"}) payload.tests.push_back(Payloads::emptyTest(name));
  payload.tests[0].interactions = {named("a"), parent, childless};
  payload.tests[2].interactions = {named("d")};
  std::string types;
  for (const auto* interaction : payload.allInteractions()) types += interaction->type + " ";
  EXPECT_EQ(types, "a b b1 b2 c d ");
}

TEST(AgentTestSchemaTest, TooDeepBranchesAreAnErrorAndNoCrash) {
  std::string text;
  constexpr int depth = 5'000;
  for (int level = 0; level < depth; ++level) {
    text += R"({"type":"tap","description":"","children":[)";
  }
  for (int level = 0; level < depth; ++level) text += "]}";
  EXPECT_TRUE(
      errorText<DecodeError>([&] { (void)Payloads::step(text); }).ends_with(": nested too deeply"));
}

TEST(AgentTestSchemaTest, FilesAreReadBack) {
  const TemporaryHome home;
  const auto file = home.path() / "payload.json";
  writeFileWhole(file, fullText);
  EXPECT_EQ(AgentWire::encode(AgentTestSchema::read(file)), fullText);
}

}  // namespace
}  // namespace corvane::testing
