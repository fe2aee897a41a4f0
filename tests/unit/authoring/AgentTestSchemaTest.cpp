#include <gtest/gtest.h>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/text/Unicode.h"
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

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";
const std::string tail = std::string("-") + id + ".corvane.json";

std::string fileName(const std::string& project, const std::string& test) {
  AgentTestSchema payload;
  payload.projectName = project;
  payload.requestId = id;
  payload.tests = {Payloads::emptyTest(test), Payloads::emptyTest("another")};
  return payload.fileName(FileTime());
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (; times > 0; --times) all += text;
  return all;
}

TEST(FileNamePartTest, LettersMarksAndNumbersStay) {
  for (const std::string text : {"Shop-2_b", "ÄöéßĲǅʰ", "мойТест", "日本語テスト", "اختبار",
                                 "ทดสอบ", "e\u0301", "क्षि", "٣४", "Ⅻ", "½²", "𝔘𝟘", ""}) {
    EXPECT_EQ(fileNamePart(text), text);
  }
}

TEST(FileNamePartTest, EveryOtherCharacterBecomesOneDash) {
  EXPECT_EQ(fileNamePart("a b/c\\d.e:f"), "a-b-c-d-e-f");
  EXPECT_EQ(fileNamePart("../../etc"), "------etc");
  EXPECT_EQ(fileNamePart(std::string("a\0b\n\x7f", 5)), "a-b--");
  EXPECT_EQ(fileNamePart("✓ 😀+€—“”\u200b\u00ad"), "----------");
  EXPECT_EQ(fileNamePart("\u0378\ue000"), "--");
}

TEST(FileNamePartTest, ShorteningKeepsWholeCharacters) {
  EXPECT_EQ(shortenedTo("abc", 3), "abc");
  EXPECT_EQ(shortenedTo("abc", 2), "ab");
  EXPECT_EQ(shortenedTo("abc", 0), "");
  EXPECT_EQ(shortenedTo("", 0), "");
  EXPECT_EQ(shortenedTo("aé", 2), "a");
  EXPECT_EQ(shortenedTo("日本", 5), "日");
  EXPECT_EQ(shortenedTo("日本", 2), "");
  EXPECT_EQ(shortenedTo("ae\u0301b", 3), "a") << "a letter keeps its accent";
  EXPECT_EQ(shortenedTo("ae\u0301b", 4), "ae\u0301");
}

TEST(PayloadFileNameTest, NamesTheProjectTheFirstTestAndTheRequest) {
  EXPECT_EQ(fileName("My/Shop App", "Log in: ünïcode"), "My-Shop-App-Log-in--ünïcode" + tail);
}

TEST(PayloadFileNameTest, WithoutATestItSaysTest) {
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.requestId = id;
  EXPECT_EQ(payload.fileName(FileTime()), "Shop-test" + tail);
}

TEST(PayloadFileNameTest, WithoutARequestItCarriesTheMilliseconds) {
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.tests = {Payloads::emptyTest("T")};
  EXPECT_EQ(payload.fileName(FileTime(std::chrono::nanoseconds(1769860800'123'999'999))),
            "Shop-T-1769860800123.corvane.json");
}

TEST(PayloadFileNameTest, LiesInTheImportsFolder) {
  const TemporaryHome home;
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.requestId = id;
  EXPECT_EQ(payload.fileURL(home.paths(), FileTime()),
            home.paths().agentImportsDirectory() / ("Shop-test" + tail));
}

TEST(PayloadFileNameTest, LongNamesShareTheRoom) {
  const std::string p = repeated("p", 1000);
  const std::string t = repeated("t", 1000);
  EXPECT_EQ(fileName(p, t), p.substr(0, 102) + "-" + t.substr(0, 102) + tail);
  EXPECT_EQ(fileName(p, t).size(), 255U);
}

TEST(PayloadFileNameTest, AShortNameLeavesItsRoomToTheOther) {
  const std::string longName = repeated("x", 1000);
  EXPECT_EQ(fileName("Shop", longName), "Shop-" + longName.substr(0, 200) + tail);
  EXPECT_EQ(fileName(longName, "T"), longName.substr(0, 203) + "-T" + tail);
  EXPECT_EQ(fileName(longName, ""), longName.substr(0, 204) + "-" + tail);
}

TEST(PayloadFileNameTest, ANameThatJustFitsIsWhole) {
  const std::string p = repeated("p", 100);
  const std::string t = repeated("t", 104);
  EXPECT_EQ(fileName(p, t), p + "-" + t + tail);
  EXPECT_EQ(fileName(p + "p", t), p + "p-" + t.substr(0, 103) + tail);
}

TEST(PayloadFileNameTest, IsNeverTooLongAndAlwaysText) {
  const std::vector<std::string> characters{"a", "é", "日", "𝔘", "e\u0301", "क्षि", "/"};
  for (const auto& one : characters) {
    for (const auto& other : characters) {
      for (const std::size_t length : {1U, 33U, 50U, 51U, 68U, 102U, 103U, 300U}) {
        const std::string name = fileName(repeated(one, length), repeated(other, 355U - length));
        EXPECT_LE(name.size(), 255U);
        EXPECT_TRUE(isValidUtf8(name));
        EXPECT_TRUE(name.ends_with(tail));
      }
    }
  }
}

/// One character may be longer than a whole name; it is then left out as a whole.
TEST(PayloadFileNameTest, OneEndlessCharacterIsLeftOut) {
  EXPECT_EQ(fileName("Shop", "e" + repeated("\u0301", 300)), "Shop-" + tail);
}

TEST(PayloadFileNameTest, TheFileSystemTakesTheLongest) {
  const TemporaryHome home;
  const auto file = home.path() / fileName(repeated("日", 300), repeated("é", 300));
  writeFileWhole(file, "{}");
  EXPECT_TRUE(fileExists(file));
}

}  // namespace
}  // namespace corvane::testing
