#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "CorvaneCore/files/Folder.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/support/ErrorText.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

class RunTestToolTest : public ::testing::Test {
 protected:
  /// The refusal of these arguments, which must leave no file.
  std::string refusal(std::string_view arguments) {
    const auto result = bench.call(tool, arguments);
    EXPECT_TRUE(result.isError);
    EXPECT_TRUE(listVisible(bench.paths.agentRunRequestsDirectory()).empty());
    return textOf(result);
  }

  /// Dispatches a run; the reply, in which the request's id stands as ID, and the file's text.
  struct Dispatched {
    std::string reply;
    std::string file;
  };
  Dispatched dispatch(std::string_view arguments) {
    std::filesystem::remove_all(bench.paths.agentRunRequestsDirectory());
    const auto result = bench.call(tool, arguments);
    EXPECT_FALSE(result.isError);
    const auto files = listVisible(bench.paths.agentRunRequestsDirectory());
    if (files.size() != 1) return {};
    const std::string name = files.front().filename();
    const std::string id = name.substr(0, 36);
    EXPECT_EQ(name, id + ".runrequest.json");
    const auto withoutId = [&](std::string text) {
      for (std::size_t at = 0; (at = text.find(id, at)) != std::string::npos;) {
        text.replace(at, id.size(), "ID");
      }
      return text;
    };
    return {withoutId(textOf(result)), withoutId(TestFiles::read(files.front()))};
  }

  std::string reply(const std::string& target, const std::string& buildFirst) {
    return "Run request dispatched to Corvane.\n"
           "\n"
           "  requestId:   ID\n"
           "  Project:     Shop\n"
           "  Target:      " +
           target +
           "\n"
           "  buildFirst:  " +
           buildFirst +
           "\n"
           "  File:        " +
           (bench.paths.agentRunRequestsDirectory() / "ID.runrequest.json").string() +
           "\n"
           "  Corvane.app: <not found>  (LAUNCH FAILED — open Corvane manually)\n"
           "\n"
           "Next: call get_result {\"requestId\":\"ID\",\"waitSeconds\":120} and repeat until the "
           "status is terminal.";
  }

  ToolBench bench;
  const MCPTool tool = makeRunTestTool(bench.services);
};

constexpr const char* projectRefusal =
    "error:invalid_arguments\n\n'projectName' is required and must be non-empty. Use the exact "
    "project name as it appears in Corvane's project list.";

std::string targetRefusal(const std::string& sent) {
  return "error:invalid_arguments\n\nSpecify exactly one of testNames, suiteName, runAll:true. You "
         "sent: " +
         sent + ".";
}

TEST_F(RunTestToolTest, NeedsArguments) {
  for (const auto& arguments :
       {std::optional<std::string_view>(), std::optional<std::string_view>("[]"),
        std::optional<std::string_view>("\"Shop\"")}) {
    EXPECT_EQ(errorText<JSONRPCError>([&] { bench.call(tool, arguments); }),
              "run_test requires arguments");
  }
}

TEST_F(RunTestToolTest, NeedsAProject) {
  EXPECT_EQ(refusal("{}"), projectRefusal);
  EXPECT_EQ(refusal(R"({"projectName":"","runAll":true})"), projectRefusal);
  EXPECT_EQ(refusal(R"({"projectName":7,"runAll":true})"), projectRefusal);
  EXPECT_EQ(refusal(R"({"projectName":null,"runAll":true})"), projectRefusal);
}

TEST_F(RunTestToolTest, NeedsExactlyOneTarget) {
  EXPECT_EQ(refusal(R"({"projectName":"Shop"})"), targetRefusal("none"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","runAll":false})"), targetRefusal("none"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testNames":"Login","suiteName":1,"runAll":"true"})"),
            targetRefusal("none"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testNames":[1]})"), targetRefusal("none"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testNames":["a"],"suiteName":"s"})"),
            targetRefusal("testNames, suiteName"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","runAll":true,"testNames":[]})"),
            targetRefusal("testNames, runAll"));
  EXPECT_EQ(refusal(R"({"projectName":"Shop","runAll":true,"suiteName":"","testNames":["a"]})"),
            targetRefusal("testNames, suiteName, runAll"));
}

TEST_F(RunTestToolTest, NeedsATargetThatNamesSomething) {
  const std::string names =
      "error:invalid_arguments\n\ntestNames must contain at least one non-empty test name.";
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testNames":[]})"), names);
  EXPECT_EQ(refusal(R"({"projectName":"Shop","testNames":["a","","b"]})"), names);
  EXPECT_EQ(refusal(R"({"projectName":"Shop","suiteName":""})"),
            "error:invalid_arguments\n\nsuiteName must be non-empty.");
}

TEST_F(RunTestToolTest, RunsTestsByName) {
  const auto one = dispatch(R"({"projectName":"Shop","testNames":["Login"]})");
  EXPECT_EQ(one.reply, reply("tests: 'Login'", "project setting"));
  EXPECT_EQ(one.file, R"({"createdAt":"2026-01-31T12:00:00Z","projectName":"Shop",)"
                      R"("requestId":"ID","schemaVersion":1,)"
                      R"("target":{"testNames":["Login"],"type":"testsByName"}})");
  // Names are kept as they are given.
  const auto more = dispatch(R"({"projectName":"Shop","testNames":[" a "," ","it's","x\ny"]})");
  EXPECT_EQ(more.reply, reply("tests: ' a ', ' ', 'it's', 'x\ny'", "project setting"));
}

TEST_F(RunTestToolTest, RunsASuite) {
  const auto run =
      dispatch(R"({"projectName":"Shop","suiteName":"Smoke/1","runAll":false,"buildFirst":true})");
  EXPECT_EQ(run.reply, reply("suite: 'Smoke/1'", "true"));
  EXPECT_EQ(run.file, R"({"buildFirst":true,"createdAt":"2026-01-31T12:00:00Z",)"
                      R"("projectName":"Shop","requestId":"ID","schemaVersion":1,)"
                      R"("target":{"suiteName":"Smoke/1","type":"suiteByName"}})");
}

TEST_F(RunTestToolTest, RunsEverything) {
  const auto run = dispatch(R"({"projectName":"Shop","runAll":true,"buildFirst":false})");
  EXPECT_EQ(run.reply, reply("all tests", "false (runs the binary already on the device)"));
  EXPECT_EQ(run.file, R"({"buildFirst":false,"createdAt":"2026-01-31T12:00:00Z",)"
                      R"("projectName":"Shop","requestId":"ID","schemaVersion":1,)"
                      R"("target":{"type":"allSuites"}})");
}

TEST_F(RunTestToolTest, PassesOptionalValuesOn) {
  bench.client.setName("claude");
  bench.clock.pass(std::chrono::milliseconds(1999));
  EXPECT_EQ(dispatch(R"({"projectName":"Shop","runAll":true,"params":{"b":"2","a":"1/2"},)"
                     R"("targetPlatform":"toaster","simulatorUDID":"not a UDID"})")
                .file,
            R"({"clientName":"claude","createdAt":"2026-01-31T12:00:01Z",)"
            R"("params":{"a":"1/2","b":"2"},"projectName":"Shop","requestId":"ID",)"
            R"("schemaVersion":1,"simulatorUDID":"not a UDID","target":{"type":"allSuites"},)"
            R"("targetPlatform":"toaster"})");
}

TEST_F(RunTestToolTest, DropsOptionalValuesOfOtherTypes) {
  EXPECT_EQ(dispatch(R"({"projectName":"Shop","runAll":true,"params":{"a":"1","b":2},)"
                     R"("buildFirst":1,"targetPlatform":["iOS"],"simulatorUDID":null})")
                .file,
            R"({"createdAt":"2026-01-31T12:00:00Z","projectName":"Shop","requestId":"ID",)"
            R"("schemaVersion":1,"target":{"type":"allSuites"}})");
}

TEST_F(RunTestToolTest, TrimsTheSimulator) {
  const auto simulator = [&](const std::string& given) {
    const std::string file =
        dispatch(R"({"projectName":"Shop","runAll":true,"simulatorUDID":")" + given + "\"}").file;
    return *readJson(file).findAs<std::string>("simulatorUDID");
  };
  EXPECT_EQ(simulator(R"( \t\r\nA B\n\u00a0\u2003)"), "A B");
  EXPECT_EQ(simulator("   "), "");
  EXPECT_EQ(simulator(""), "");
}

TEST_F(RunTestToolTest, MakesAFreshIdForEveryRun) {
  for (int i = 0; i < 20; ++i) bench.call(tool, R"({"projectName":"Shop","runAll":true})");
  EXPECT_EQ(listVisible(bench.paths.agentRunRequestsDirectory()).size(), 20U);
}

TEST_F(RunTestToolTest, FailsWhenTheRequestCannotBeWritten) {
  TestFiles::write(bench.paths.agentRunRequestsDirectory(), "a file");
  try {
    bench.call(tool, R"({"projectName":"Shop","runAll":true})");
    ADD_FAILURE();
  } catch (const JSONRPCError& error) {
    EXPECT_EQ(error.code, -32603);
    EXPECT_TRUE(error.message.starts_with("Failed to write run request: could not write " +
                                          bench.paths.agentRunRequestsDirectory().string()))
        << error.message;
    EXPECT_TRUE(error.message.ends_with(".runrequest.json: Not a directory")) << error.message;
  }
  // Nothing else happens: the app is not even looked for.
  EXPECT_EQ(bench.logged(), std::vector<std::string>());
}

}  // namespace
}  // namespace corvane::testing
