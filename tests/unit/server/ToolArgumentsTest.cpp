#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/requests/Requests.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/ToolServices.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

struct Sample {
  std::optional<std::string> text;
  std::optional<bool> flag;
  std::optional<std::int64_t> number;
  std::optional<std::vector<std::string>> names;
  std::optional<std::map<std::string, std::string>> values;

  static auto arguments() {
    return std::tuple(
        argument("text", &Sample::text, "Some text.").required().with("pattern", "^a"),
        argument("flag", &Sample::flag, "A/B.").with("default", false),
        argument("number", &Sample::number, "").with("minimum", 0).with("maximum", 9),
        argument("names", &Sample::names, "N").with("minItems", 1).required(),
        argument("values", &Sample::values, "V"));
  }
};

struct Nothing {
  static auto arguments() { return std::tuple(); }
};

Sample read(std::string_view json) {
  ToolCall call{readJson(json), std::nullopt};
  return takeArguments<Sample>(call, "sample");
}

TEST(ToolArgumentsTest, PublishesASchema) {
  EXPECT_EQ(
      toJson(schemaOf<Sample>(OtherProperties::refused)),
      R"({"additionalProperties":false,"properties":{)"
      R"("flag":{"default":false,"description":"A/B.","type":"boolean"},)"
      R"("names":{"description":"N","items":{"type":"string"},"minItems":1,"type":"array"},)"
      R"("number":{"description":"","maximum":9,"minimum":0,"type":"integer"},)"
      R"("text":{"description":"Some text.","pattern":"^a","type":"string"},)"
      R"("values":{"additionalProperties":{"type":"string"},"description":"V","type":"object"}},)"
      R"("required":["text","names"],"type":"object"})");
}

TEST(ToolArgumentsTest, LeavesOutOfTheSchemaWhatIsNotSaid) {
  EXPECT_EQ(toJson(schemaOf<Nothing>(OtherProperties::notMentioned)),
            R"({"properties":{},"type":"object"})");
  EXPECT_EQ(toJson(schemaOf<Nothing>(OtherProperties::refused)),
            R"({"additionalProperties":false,"properties":{},"type":"object"})");
}

TEST(ToolArgumentsTest, ReadsArgumentsOfTheirTypes) {
  const Sample sample =
      read(R"({"text":"b","flag":true,"number":3.0,"names":["x",""],"values":{"k":"v"}})");
  EXPECT_EQ(sample.text, "b");
  EXPECT_EQ(sample.flag, true);
  EXPECT_EQ(sample.number, 3);
  EXPECT_EQ(sample.names, (std::vector<std::string>{"x", ""}));
  EXPECT_EQ(sample.values, (std::map<std::string, std::string>{{"k", "v"}}));
}

TEST(ToolArgumentsTest, KeepsEmptyValues) {
  const Sample sample = read(R"({"text":"","names":[],"values":{}})");
  EXPECT_EQ(sample.text, "");
  EXPECT_TRUE(sample.names && sample.names->empty());
  EXPECT_TRUE(sample.values && sample.values->empty());
}

TEST(ToolArgumentsTest, TakesValuesOfOtherTypesForAbsent) {
  for (const char* json :
       {"{}", R"({"text":null,"flag":null,"number":null,"names":null,"values":null})",
        R"({"text":1,"flag":0,"number":"3","names":"x","values":[]})",
        R"({"text":["b"],"flag":"true","number":3.5,"names":["x",1],"values":{"k":1,"l":"v"}})",
        R"({"text":{},"flag":1,"number":true,"names":[null],"values":{"k":null}})",
        R"({"text":false,"flag":{},"number":9223372036854775808,"names":{},"values":"x"})"}) {
    const Sample sample = read(json);
    EXPECT_FALSE(sample.text || sample.flag || sample.number || sample.names || sample.values)
        << json;
  }
}

TEST(ToolArgumentsTest, PassesOverWhatIsNotDeclared) {
  EXPECT_EQ(read(R"({"other":[1],"text":"x","Text":"y"})").text, "x");
}

TEST(ToolArgumentsTest, RefusesACallWithoutAnObject) {
  for (const char* json : {"null", "[]", "\"text\"", "7", "true"}) {
    try {
      read(json);
      ADD_FAILURE() << json;
    } catch (const JSONRPCError& error) {
      EXPECT_EQ(error.code, -32602);
      EXPECT_EQ(error.message, "sample requires arguments");
    }
  }
  ToolCall call;
  try {
    (void)takeArguments<Sample>(call, "sample");
    ADD_FAILURE();
  } catch (const JSONRPCError& error) {
    EXPECT_EQ(error.message, "sample requires arguments");
  }
}

using Lines = std::vector<std::string>;

TEST(DispatchTest, DescribesALaunch) {
  EXPECT_EQ((Dispatch::Launch{"/a/Corvane.app", true}).describe(), "/a/Corvane.app");
  EXPECT_EQ((Dispatch::Launch{"/a/Corvane.app", false}).describe(),
            "/a/Corvane.app  (LAUNCH FAILED — open Corvane manually)");
  EXPECT_EQ(Dispatch::describeApp("/a/Corvane.app"), "/a/Corvane.app");
  EXPECT_EQ(Dispatch::describeApp("/a/\xff.app"), "/a/\xEF\xBF\xBD.app");
  EXPECT_EQ(Dispatch::describeApp(std::nullopt), "<not found>");
}

TEST(DispatchTest, MakesTheNextCallReadyToCopy) {
  EXPECT_EQ(Dispatch::getResultCall("some-id", 120),
            R"(get_result {"requestId":"some-id","waitSeconds":120})");
}

TEST(DispatchTest, WritesARequestAndLogsIt) {
  ToolBench bench;
  AgentRunRequest request;
  request.requestId = "some-id";
  const auto path = bench.paths.agentRunRequestsDirectory() / "some-id.runrequest.json";
  DispatchOrder order;
  auto turn = order.tryEnter();
  EXPECT_EQ(Dispatch::writeRequest(request, "run request", bench.services, *turn), path);
  EXPECT_TRUE(order.tryEnter()) << "the next call may write once this one has";
  EXPECT_EQ(AgentRunRequest::read(path).requestId, "some-id");
  EXPECT_EQ(bench.logged(), Lines{"INFO Wrote run request: " + path.string()});
}

TEST(DispatchTest, SaysWhyARequestCannotBeWritten) {
  ToolBench bench;
  TestFiles::write(bench.paths.agentRunRequestsDirectory(), "a file");
  AgentRunRequest request;
  request.requestId = "some-id";
  try {
    DispatchOrder::Turn turn;
    Dispatch::writeRequest(request, "run request", bench.services, turn);
    ADD_FAILURE();
  } catch (const JSONRPCError& error) {
    EXPECT_EQ(error.code, -32603);
    EXPECT_EQ(error.message,
              "Failed to write run request: could not write " +
                  (bench.paths.agentRunRequestsDirectory() / "some-id.runrequest.json").string() +
                  ": Not a directory");
  }
  EXPECT_EQ(bench.logged(), Lines());
}

TEST(DispatchTest, SaysWhenThereIsNoAppToLaunch) {
  ToolBench bench;
  const auto launch = Dispatch::launchApp(bench.services);
  EXPECT_EQ(launch.describe(), "<not found>  (LAUNCH FAILED — open Corvane manually)");
  EXPECT_FALSE(launch.succeeded);
  EXPECT_EQ(bench.logged(), Lines{"WARN Could not locate Corvane.app to launch"});
}

TEST(DispatchTest, LaunchesTheAppUnlessItRuns) {
  ToolBench bench;
  const TemporaryApp app(bench.home.path() / "Applications" / "Corvane.app");
  const auto first = Dispatch::launchApp(bench.services);
  EXPECT_EQ(first.describe(), app.bundle());
  EXPECT_TRUE(first.succeeded);
  const pid_t process = app.waitUntilUp();
  const auto second = Dispatch::launchApp(bench.services);
  EXPECT_TRUE(second.succeeded);
  EXPECT_EQ(app.waitUntilUp(), process);
  EXPECT_EQ(bench.logged(), Lines());
}

TEST(DispatchTest, ReportsAnAppThatCannotBeStarted) {
  ToolBench bench;
  const auto bundle = bench.home.path() / "Applications" / "Corvane.app";
  std::filesystem::create_directories(bundle);
  EXPECT_EQ(Dispatch::launchApp(bench.services).describe(),
            bundle.string() + "  (LAUNCH FAILED — open Corvane manually)");
}

}  // namespace
}  // namespace corvane::testing
