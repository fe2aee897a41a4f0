#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "CorvaneCore/authoring/InputSchemaBuilder.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/support/PrintJson.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

constexpr const char* bookendSteps =
    R"({"type":"builtIn","description":"","parameters":{"command":"terminateApplication"}},)"
    R"({"type":"builtIn","description":"{{APP_NAME}}","parameters":{"command":"openApplication"}},)";
constexpr const char* lastStep =
    R"({"type":"builtIn","description":"","parameters":{"command":"terminateApplication"}})";

/// Arguments that are accepted, with `steps` (each followed by a comma) between the bookends and
/// `more` members (each preceded by one).
std::string arguments(const std::string& steps = "", const std::string& more = "") {
  return R"({"projectName":"Shop","testName":"Log in","iosProjectPath":"/src/shop",)"
         R"("bundleIdentifier":"com.example.shop","interactions":[)" +
         std::string(bookendSteps) + steps + lastStep + "]" + more + "}";
}

class CreateTestToolTest : public ::testing::Test {
 protected:
  ToolsCallResult call(std::optional<std::string_view> arguments) {
    return bench.call(makeCreateTestTool(bench.services), arguments);
  }
  /// What the answer to accepted arguments says.
  std::string answer(const std::string& arguments) {
    const auto result = call(arguments);
    EXPECT_FALSE(result.isError);
    return textOf(result);
  }
  /// What the answer to arguments that are not accepted says.
  std::string refusal(const std::string& arguments) {
    const auto result = call(arguments);
    EXPECT_TRUE(result.isError) << arguments;
    EXPECT_TRUE(imports().empty()) << arguments;
    return textOf(result);
  }
  /// "code message" of the protocol error that a call ends in.
  std::string protocolError(std::optional<std::string_view> arguments) {
    try {
      return "answered " + textOf(call(arguments));
    } catch (const JSONRPCError& error) {
      return std::to_string(error.code) + " " + error.message;
    }
  }
  [[nodiscard]] std::vector<std::filesystem::path> imports() const {
    return listVisible(bench.paths.agentImportsDirectory());
  }
  /// The payload that these arguments make; they have to be accepted.
  AnyCodable payload(const std::string& arguments) {
    (void)answer(arguments);
    const auto files = imports();
    if (files.size() != 1) throw std::runtime_error("not one payload");
    AnyCodable read = readJson(TestFiles::read(files.front()));
    std::filesystem::remove(files.front());
    return read;
  }
  /// The step between the bookends of the payload that these arguments make.
  std::string stepMadeOf(const std::string& step) {
    const AnyCodable made = payload(arguments(step + ",", R"(,"selfHealingMode":"fullTest")"));
    const auto& test = made.findAs<AnyCodable::Array>("tests")->front();
    return toJson(test.findAs<AnyCodable::Array>("interactions")->at(2));
  }

  ToolBench bench;
};

TEST_F(CreateTestToolTest, NeedsAnArgumentsObject) {
  EXPECT_EQ(protocolError(std::nullopt), "-32602 create_test requires arguments");
  for (const char* other : {"null", "[]", R"("test")", "1", "true"}) {
    EXPECT_EQ(protocolError(other), "-32602 create_test requires arguments");
  }
}

TEST_F(CreateTestToolTest, PublishesTheSchemaOfTheContract) {
  EXPECT_EQ(makeCreateTestTool(bench.services).inputSchema(), InputSchemaBuilder::build());
}

TEST_F(CreateTestToolTest, ArgumentsAreCheckedInOrder) {
  const std::string project = "'projectName' is required and must be non-empty.";
  const std::string test = "'testName' is required and must be non-empty.";
  const std::string steps = "'interactions' must be an array of interaction objects.";
  for (const char* wrong :
       {"{}", R"({"projectName":""})", R"({"projectName":7,"testName":"T","interactions":[]})",
        R"({"projectName":null,"testName":"","bundleIdentifier":"Shop"})"}) {
    EXPECT_EQ(refusal(wrong), project);
  }
  for (const char* wrong : {R"({"projectName":"P"})", R"({"projectName":"P","testName":""})",
                            R"({"projectName":"P","testName":["T"],"interactions":1})"}) {
    EXPECT_EQ(refusal(wrong), test);
  }
  for (const char* wrong :
       {"", R"(,"interactions":null)", R"(,"interactions":{})", R"(,"interactions":"tap")",
        R"(,"interactions":[{},1])", R"(,"interactions":["tap"],"bundleIdentifier":"Shop")"}) {
    EXPECT_EQ(refusal(R"({"projectName":"P","testName":"T")" + std::string(wrong) + "}"), steps);
  }
}

TEST_F(CreateTestToolTest, DisplayNamesAreNoIdentifiers) {
  const std::string begin = R"({"projectName":"P","testName":"T","interactions":[])";
  EXPECT_EQ(refusal(begin + R"(,"bundleIdentifier":"My Shop","applicationId":"Shop"})"),
            "'My Shop' looks like an app display name, not a bundleIdentifier. Pass the real "
            "reverse-DNS identifier (e.g. com.example.myapp) — check the Xcode target / "
            "applicationId in build.gradle.");
  EXPECT_EQ(refusal(begin + R"(,"bundleIdentifier":"a.b","applicationId":"Shop"})"),
            "'Shop' looks like an app display name, not a applicationId. Pass the real "
            "reverse-DNS identifier (e.g. com.example.myapp) — check the Xcode target / "
            "applicationId in build.gradle.");
  EXPECT_TRUE(refusal(begin + R"(,"bundleIdentifier":""})").starts_with("VALIDATION FAILED"));
  EXPECT_TRUE(refusal(begin + R"(,"bundleIdentifier":7})").starts_with("VALIDATION FAILED"));
}

TEST_F(CreateTestToolTest, IssuesGoBackAndNothingIsWritten) {
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testName":"T","bundleIdentifier":"com.example.shop",)"
                    R"("buildFirst":false,"applicationId":"a/b.c","interactions":[]})"),
            "VALIDATION FAILED. Fix the issues below and call create_test again.\n"
            "Each issue has: severity, code, path, message, optional suggestion.\n\n"
            "{\n"
            "  \"issues\": [\n"
            "    {\n"
            "      \"code\": \"platformFieldMismatch\",\n"
            "      \"message\": \"Android fields are ignored when targetPlatform is iOS.\",\n"
            "      \"path\": \"androidProjectPath\",\n"
            "      \"severity\": \"warning\"\n"
            "    },\n"
            "    {\n"
            "      \"code\": \"emptyInteractionsArray\",\n"
            "      \"message\": \"Test 'T' has no interactions.\",\n"
            "      \"path\": \"tests[0].interactions\",\n"
            "      \"severity\": \"error\"\n"
            "    }\n"
            "  ]\n"
            "}");
  EXPECT_EQ(bench.logged(),
            std::vector<std::string>{"WARN create_test validation failed with 1 error(s)"});
}

TEST_F(CreateTestToolTest, ASoundTestIsWrittenAndDispatched) {
  bench.client.setName("agent/1");
  const std::string text = answer(
      R"({"projectName":"My/Shop","testName":"Log in","testDescription":"d","testIndex":4,)"
      R"("version":"2.1","targetPlatform":"iOS","iosProjectPath":"/src/shop",)"
      R"("bundleIdentifier":"com.example.shop","autoRun":true,"buildFirst":true,)"
      R"("suiteName":"Smoke","simulatorUDID":" U ","selfHealingMode":"fullTest","interactions":[)" +
      std::string(bookendSteps) + lastStep + "]}");
  ASSERT_EQ(imports().size(), 1U);
  const std::string path = imports().front();
  const std::string name = imports().front().filename();
  ASSERT_TRUE(name.starts_with("My-Shop-Log-in-")) << name;
  ASSERT_TRUE(name.ends_with(".corvane.json")) << name;
  const std::string id = name.substr(15, 36);
  EXPECT_EQ(parseRequestId(id), id);
  EXPECT_EQ(
      text,
      "Test 'Log in' dispatched to Corvane.\n\n  requestId:   " + id + "\n  File:        " + path +
          "\n  autoRun:     true\n  Corvane.app: <not found>  (LAUNCH FAILED — open Corvane "
          "manually)\n\nCorvane's file watcher will pick up the file within a second. Because "
          "autoRun=true, Corvane will build the app, boot the simulator, install, and "
          "run.\n\nNext: call get_result {\"requestId\":\"" +
          id +
          "\",\"waitSeconds\":120} and repeat until the status is terminal. A first build can "
          "take several minutes.");
  const std::string written = TestFiles::read(path);
  EXPECT_EQ(
      written,
      R"({"autoRun":true,"buildFirst":true,"bundleIdentifier":"com.example.shop",)"
      R"("clientName":"agent/1","createdAt":"2026-01-31T12:00:00Z","iosProjectPath":"/src/shop",)"
      R"("projectName":"My/Shop","requestId":")" +
          id +
          R"(","simulatorUDID":" U ","suiteName":"Smoke","targetPlatform":"iOS","tests":[)"
          R"({"description":"d","index":4,"interactions":[)"
          R"({"description":"","parameters":{"command":"terminateApplication"},"type":"builtIn"},)"
          R"({"description":"{{APP_NAME}}","parameters":{"command":"openApplication"},)"
          R"("type":"builtIn"},)"
          R"({"description":"","parameters":{"command":"terminateApplication"},"type":"builtIn"}],)"
          R"("name":"Log in","selfHealingMode":"fullTest"}],"version":2})");
  EXPECT_EQ(bench.logged(),
            (std::vector<std::string>{
                "INFO Wrote test file: " + path + " (" + std::to_string(written.size()) + " bytes)",
                "WARN Could not locate Corvane.app to launch"}));
}

TEST_F(CreateTestToolTest, OnlyWhatWasSaidIsWritten) {
  const AnyCodable made = payload(arguments());
  std::string keys;
  for (const auto& member : *made.object()) keys += member.key + " ";
  EXPECT_EQ(keys, "bundleIdentifier createdAt iosProjectPath projectName requestId tests version ");
  keys.clear();
  for (const auto& member : *made.findAs<AnyCodable::Array>("tests")->front().object()) {
    keys += member.key + " ";
  }
  EXPECT_EQ(keys, "index interactions name ");
}

TEST_F(CreateTestToolTest, ValuesOfAnotherTypeCountAsAbsent) {
  const AnyCodable made = payload(arguments(
      "",
      R"(,"targetPlatform":1,"androidProjectPath":null,"applicationId":[],"autoRun":"false",)"
      R"("buildFirst":0,"suiteName":{},"simulatorUDID":7,"testDescription":true,"testIndex":"3",)"
      R"("selfHealingMode":["off"],"version":2,"noSuchArgument":1)"));
  std::string keys;
  for (const auto& member : *made.object()) keys += member.key + " ";
  EXPECT_EQ(keys, "bundleIdentifier createdAt iosProjectPath projectName requestId tests version ");
  EXPECT_EQ(toJson(*made.find("version")), "1");
  EXPECT_EQ(toJson(*made.findAs<AnyCodable::Array>("tests")->front().find("index")), "0");
}

TEST_F(CreateTestToolTest, AndroidArgumentsAreCopied) {
  const AnyCodable made = payload(
      R"({"projectName":"Shop","testName":"T","targetPlatform":"android",)"
      R"("androidProjectPath":"/src/shop","applicationId":"com.example.shop","interactions":[)" +
      std::string(bookendSteps) + lastStep + "]}");
  EXPECT_EQ(toJson(*made.find("androidProjectPath")), R"("/src/shop")");
  EXPECT_EQ(toJson(*made.find("applicationId")), R"("com.example.shop")");
}

TEST_F(CreateTestToolTest, TheVersionIsTheIntegerItBeginsWith) {
  const auto version = [this](const std::string& text) {
    return toJson(*payload(arguments("", R"(,"version":")" + text + "\"")).find("version"));
  };
  EXPECT_EQ(version("1.0"), "1");
  EXPECT_EQ(version("2"), "2");
  EXPECT_EQ(version("12.5-beta"), "12");
  for (const char* unreadable : {"", "v2", "latest", ".5", " 2", "99999999999999999999"}) {
    EXPECT_EQ(version(unreadable), "1") << unreadable;
  }
}

TEST_F(CreateTestToolTest, WholeNumbersInAnySpellingAreIntegers) {
  const auto index = [this](const std::string& number) {
    const AnyCodable made = payload(arguments("", R"(,"testIndex":)" + number));
    return toJson(*made.findAs<AnyCodable::Array>("tests")->front().find("index"));
  };
  EXPECT_EQ(index("3"), "3");
  EXPECT_EQ(index("3.0"), "3");
  EXPECT_EQ(index("3e1"), "30");
  EXPECT_EQ(index("-2"), "-2");
  EXPECT_EQ(index("9223372036854775807"), "9223372036854775807");
  for (const char* other : {"3.5", "9223372036854775808", "1e300", R"("3")", "true", "null"}) {
    EXPECT_EQ(index(other), "0") << other;
  }
}

TEST_F(CreateTestToolTest, EveryMemberOfAStepIsRead) {
  const std::string full =
      R"({"aiSegmentationMode":"auto","arguments":{"user":"me"},"children":[)"
      R"({"description":"'OK'","parameters":{"regionOfInterest":"all"},)"
      R"("previousStepCondition":"previousFailed","type":"tap"}],"description":"note",)"
      R"("fromStep":1,"memoryEnabled":false,"parameters":{"n":[1,0.5,null]},)"
      R"("referencedTestId":"id","referencedTestName":"name","toStep":2,"type":"reuseSteps",)"
      R"("udiName":"udi","visualCheckpoint":true})";
  EXPECT_EQ(stepMadeOf(full), full);
}

TEST_F(CreateTestToolTest, TheTitleOfAStepIsNotRead) {
  EXPECT_EQ(stepMadeOf(R"({"type":"runTest","referencedTestName":"x","title":"RUN"})"),
            R"({"description":"","referencedTestName":"x","type":"runTest"})");
}

TEST_F(CreateTestToolTest, MembersOfAnotherTypeCountAsAbsent) {
  EXPECT_EQ(
      stepMadeOf(
          R"({"type":"runTest","referencedTestName":"x","description":7,"parameters":[],)"
          R"("memoryEnabled":"yes","aiSegmentationMode":1,"referencedTestId":{},"fromStep":0.5,)"
          R"("toStep":"2","udiName":null,"visualCheckpoint":0,"arguments":{"n":1},)"
          R"("previousStepCondition":null,"children":[{"type":"tap"},7]})"),
      R"({"description":"","referencedTestName":"x","type":"runTest"})");
}

TEST_F(CreateTestToolTest, AStepWithoutATypeHasAnUnknownOne) {
  EXPECT_NE(refusal(arguments(R"({"description":"x"},)")).find("Unknown interaction type ''"),
            std::string::npos);
  EXPECT_NE(refusal(arguments(R"({"type":1},)")).find("Unknown interaction type ''"),
            std::string::npos);
}

TEST_F(CreateTestToolTest, BranchesDeeperThanOneLevelAreDropped) {
  EXPECT_EQ(
      stepMadeOf(R"({"type":"runTest","referencedTestName":"x","children":[)"
                 R"({"type":"visualAssert","description":"'y'?",)"
                 R"("previousStepCondition":"previousFailed","children":[{"type":"tap"}]}]})"),
      R"({"children":[{"description":"'y'?","previousStepCondition":"previousFailed",)"
      R"("type":"visualAssert"}],"description":"","referencedTestName":"x","type":"runTest"})");
}

// Fails when a loss is not told, is told without its place, or is told of what was not sent.
TEST_F(CreateTestToolTest, WhatIsDroppedIsToldInTheLog) {
  (void)answer(arguments(
      R"({"type":"runTest","referencedTestName":"x","title":7,"fromStep":"1","toStep":null,)"
      R"("arguments":{"a":"b","n\n":1},"children":[{"type":"visualAssert","description":"'y'?",)"
      R"("previousStepCondition":"previousFailed","udiName":[],"children":[{"type":"tap"}]},)"
      R"({"type":"visualAssert","description":"'z'?","previousStepCondition":"previousFailed",)"
      R"("children":[]},{"type":"visualAssert","description":"'a'?",)"
      R"("previousStepCondition":"previousFailed","children":7}]},)"
      R"({"type":"runTest","referencedTestName":"x","children":[{"type":"tap"},null]},)"
      R"({"type":"runTest","referencedTestName":"x","children":null},)",
      R"(,"selfHealingMode":"fullTest","autoRun":"false","suiteName":null,"testIndex":0.5)"));
  auto told = bench.logged();
  std::erase_if(told, [](const std::string& line) { return !line.starts_with("WARN "); });
  EXPECT_EQ(
      told,
      (std::vector<std::string>{
          "WARN testIndex dropped: expected an integer", "WARN autoRun dropped: expected a boolean",
          "WARN interactions[2].arguments dropped: n\\n: expected a string",
          "WARN interactions[2].fromStep dropped: expected an integer",
          "WARN interactions[2].children[0].udiName dropped: expected a string",
          "WARN interactions[2].children[0].children dropped: branches are one level deep",
          "WARN interactions[2].children[2].children dropped: expected an array of objects",
          "WARN interactions[3].children dropped: expected an array of objects",
          "WARN Could not locate Corvane.app to launch"}));
}

TEST_F(CreateTestToolTest, DescriptionsOfCommandsAreTidied) {
  const auto tidied = [this](const std::string& command, const std::string& description) {
    const AnyCodable made =
        readJson(stepMadeOf(R"({"type":"builtIn","description":")" + description +
                            R"(","parameters":{"command":")" + command + R"("}})"));
    return *made.findAs<std::string>("description");
  };
  for (const char* command :
       {"goHome", "hitReturnKey", "clearText", "tapToDismiss", "terminateApplication"}) {
    EXPECT_EQ(tidied(command, " Shop "), "") << command;
  }
  EXPECT_EQ(tidied("openUrl", " \\n$target\\u00a0"), "$target");
  EXPECT_EQ(tidied("hitBackspaceKey", "\\t5 "), "5");
  EXPECT_EQ(tidied("openApplication", "{{APP_NAME}}"), "{{APP_NAME}}");
  EXPECT_NE(refusal(arguments(R"({"type":"builtIn","description":" {{APP_NAME}}",)"
                              R"("parameters":{"command":"openApplication"}},)"))
                .find("wrongAppNamePlaceholder"),
            std::string::npos);
}

TEST_F(CreateTestToolTest, DescriptionsInBranchesAreTidiedToo) {
  EXPECT_EQ(stepMadeOf(R"({"type":"runTest","referencedTestName":"x","description":" x ",)"
                       R"("children":[{"type":"builtIn","description":" 5 ",)"
                       R"("parameters":{"command":"hitBackspaceKey"},)"
                       R"("previousStepCondition":"previousFailed"}]})"),
            R"({"children":[{"description":"5","parameters":{"command":"hitBackspaceKey"},)"
            R"("previousStepCondition":"previousFailed","type":"builtIn"}],"description":" x ",)"
            R"("referencedTestName":"x","type":"runTest"})");
}

TEST_F(CreateTestToolTest, TheAnswerSaysWhatWillHappen) {
  const auto dispatched = [this](const std::string& more) { return answer(arguments("", more)); };
  const std::string installed =
      "Because autoRun=true, Corvane will run against the app binary already on the device "
      "(buildFirst=false).\n\nNext: call get_result {\"requestId\":\"";
  EXPECT_NE(dispatched(R"(,"buildFirst":false)").find(installed), std::string::npos);
  EXPECT_NE(dispatched(R"(,"buildFirst":false,"autoRun":true)").find(installed), std::string::npos);
  const std::string manual = dispatched(R"(,"autoRun":false)");
  EXPECT_NE(manual.find("\n  autoRun:     false\n"), std::string::npos);
  EXPECT_NE(manual.find("within a second. Because autoRun=false, the test will appear in the "
                        "Corvane UI; the user clicks Run to execute.\n\nNext: call get_result "),
            std::string::npos);
  EXPECT_NE(dispatched("").find("\n  autoRun:     true\n"), std::string::npos);
}

TEST_F(CreateTestToolTest, TheAppThatIsFoundIsShown) {
  const auto app = bench.home.path() / "Applications" / "Corvane.app";
  std::filesystem::create_directories(app);
  ::setenv("CORVANE_MCP_SUPPRESS_LAUNCH", "1", 1);
  const std::string text = answer(arguments());
  ::unsetenv("CORVANE_MCP_SUPPRESS_LAUNCH");
  EXPECT_NE(text.find("\n  Corvane.app: " + app.string() +
                      "  (LAUNCH FAILED — open Corvane manually)\n\n"),
            std::string::npos);
  EXPECT_EQ(bench.logged().back(),
            "INFO Launched Corvane.app at " + app.string() + ": success=false");
}

TEST_F(CreateTestToolTest, AnUnwritableFolderIsAProtocolError) {
  std::filesystem::create_directories(bench.paths.applicationSupport());
  TestFiles::write(bench.paths.agentImportsDirectory(), "a file in the folder's place");
  const std::string error = protocolError(arguments());
  EXPECT_TRUE(error.starts_with("-32603 Failed to write test file: could not write " +
                                bench.paths.agentImportsDirectory().string() + "/Shop-Log-in-"))
      << error;
  EXPECT_EQ(bench.logged(), std::vector<std::string>());
}

/// Every property that the schema publishes arrives in the payload.
TEST_F(CreateTestToolTest, EveryPublishedArgumentIsRead) {
  const AnyCodable schema = InputSchemaBuilder::build();
  const std::string before = AgentWire::encode(payload(arguments()));
  for (const auto& [key, property] : *schema.findAs<JsonObject>("properties")) {
    AnyCodable sent = readJson(arguments());
    auto& members = std::get<JsonObject>(sent.value());
    const std::string type = *property.findAs<std::string>("type");
    if (key == "interactions") continue;
    if (key == "selfHealingMode") {
      members.set(key, "fullTest");
    } else if (type == "string") {
      members.set(key, "2.changed");
    } else if (type == "integer") {
      members.set(key, 7);
    } else {
      members.set(key, true);
    }
    AnyCodable made = payload(toJson(sent));
    std::get<JsonObject>(made.value()).set("requestId", *readJson(before).find("requestId"));
    EXPECT_NE(AgentWire::encode(made), before) << key;
  }
}

}  // namespace
}  // namespace corvane::testing
