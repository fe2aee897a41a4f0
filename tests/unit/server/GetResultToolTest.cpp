#include "corvane_mcp/tools/Tools.h"

#include <gtest/gtest.h>

#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/support/ErrorText.h"
#include "tests/support/Pipe.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

using namespace std::chrono_literals;

const std::string id = "0a1b2c3d-0000-4000-8000-00000000abcd";

class GetResultToolTest : public ::testing::Test {
 protected:
  /// The arguments of a call for the request, and these more.
  static std::string arguments(const std::string& more = "") {
    return R"({"requestId":")" + id + "\"" + (more.empty() ? "" : "," + more) + "}";
  }
  std::string text(const std::string& more = "") {
    return textOf(bench.call(tool, arguments(more)));
  }

  ToolBench bench;
  const MCPTool tool = makeGetResultTool(bench.services);
  const std::filesystem::path file = bench.paths.agentResultsDirectory() / (id + ".json");
};

TEST_F(GetResultToolTest, NeedsArguments) {
  EXPECT_EQ(errorText<JSONRPCError>([&] { bench.call(tool, std::nullopt); }),
            "get_result requires arguments");
  EXPECT_EQ(errorText<JSONRPCError>([&] { bench.call(tool, "[]"); }),
            "get_result requires arguments");
}

TEST_F(GetResultToolTest, RefusesAnIdThatIsNoUuid) {
  const auto refusal = [&](const char* arguments) {
    const auto result = bench.call(tool, arguments);
    EXPECT_TRUE(result.isError);
    return textOf(result);
  };
  const std::string start =
      "error:invalid_request_id\n\nrequestId must be the UUID returned by create_test/run_test. "
      "Got: '";
  EXPECT_EQ(refusal("{}"), start + "<missing>'");
  EXPECT_EQ(refusal(R"({"requestId":null})"), start + "<missing>'");
  EXPECT_EQ(refusal(R"({"requestId":5})"), start + "<missing>'");
  EXPECT_EQ(refusal(R"({"requestId":""})"), start + "'");
  EXPECT_EQ(refusal(R"({"requestId":"It's\n"})"), start + "It's\n'");
  EXPECT_EQ(refusal(R"({"requestId":"0a1b2c3d00004000800000000000abcd"})"),
            start + "0a1b2c3d00004000800000000000abcd'");
  EXPECT_EQ(refusal(R"({"requestId":"{0a1b2c3d-0000-4000-8000-00000000abcd}"})"),
            start + "{0a1b2c3d-0000-4000-8000-00000000abcd}'");
  EXPECT_EQ(refusal(R"({"requestId":"0a1b2c3d-0000-4000-8000-00000000abcg"})"),
            start + "0a1b2c3d-0000-4000-8000-00000000abcg'");
}

TEST_F(GetResultToolTest, TakesAnIdInAnyCase) {
  TestFiles::write(file, R"({"status":"passed"})");
  EXPECT_EQ(textOf(bench.call(tool, R"({"requestId":"0A1B2C3D-0000-4000-8000-00000000ABCD"})")),
            "status: passed (terminal)\n\n{\"status\":\"passed\"}");
}

TEST_F(GetResultToolTest, ReportsARequestThatNobodyKnows) {
  const auto result = bench.call(tool, arguments());
  EXPECT_TRUE(result.isError);
  EXPECT_EQ(textOf(result),
            "error:unknown_request_id\n\nNo result for requestId " + id +
                ". Either the id is wrong, the result was pruned (results are kept ~7 days), or "
                "your Corvane.app predates run feedback — update Corvane if get_result never finds "
                "results for fresh requests.");
}

TEST_F(GetResultToolTest, ReportsARequestThatWaits) {
  TestFiles::write(bench.paths.agentRunRequestsDirectory() / (id + ".runrequest.json"), "{}");
  const auto result = bench.call(tool, arguments());
  EXPECT_FALSE(result.isError);
  EXPECT_EQ(
      textOf(result),
      "status: pending (Corvane has not picked up the request yet)\n\n"
      "{\"requestId\":\"" +
          id +
          "\",\"status\":\"pending\",\"terminal\":false}\n\n"
          "The request file is still waiting in Corvane's drop folder. Is Corvane.app running "
          "and signed in? (create_test/run_test launch it, but a cold start takes a few seconds "
          "— call get_result again with waitSeconds.)");
}

TEST_F(GetResultToolTest, ReportsAFileThatCannotBeParsed) {
  TestFiles::write(file, "no JSON");
  const auto result = bench.call(tool, arguments());
  EXPECT_TRUE(result.isError);
  EXPECT_EQ(
      textOf(result),
      "error:result_unreadable\n\nA result file exists but could not be parsed: " + file.string());
}

TEST_F(GetResultToolTest, ShowsATerminalResultAsItStands) {
  TestFiles::write(file, "{\"status\": \"error\",\n \"x\":1.0}\n");
  const auto result = bench.call(tool, arguments());
  EXPECT_FALSE(result.isError);
  EXPECT_EQ(textOf(result), "status: error (terminal)\n\n{\"status\": \"error\",\n \"x\":1.0}\n");
}

TEST_F(GetResultToolTest, WaitsAsLongAsAskedWithinItsLimits) {
  const auto slept = [&](const std::string& wait) {
    const auto before = bench.clock.totalSlept();
    text(wait);
    return bench.clock.totalSlept() - before;
  };
  EXPECT_EQ(slept(""), 0s);
  EXPECT_EQ(slept(R"("waitSeconds":0)"), 0s);
  EXPECT_EQ(slept(R"("waitSeconds":3)"), 3s);
  EXPECT_EQ(slept(R"("waitSeconds":45.0)"), 45s);
  EXPECT_EQ(slept(R"("waitSeconds":240)"), 240s);
  EXPECT_EQ(slept(R"("waitSeconds":241)"), 240s);
  EXPECT_EQ(slept(R"("waitSeconds":1000)"), 240s);
  EXPECT_EQ(slept(R"("waitSeconds":9223372036854775807)"), 240s);
  EXPECT_EQ(slept(R"("waitSeconds":-5)"), 0s);
  EXPECT_EQ(slept(R"("waitSeconds":-9223372036854775808)"), 0s);
  for (const char* other :
       {R"("waitSeconds":"60")", R"("waitSeconds":1.5)", R"("waitSeconds":true)",
        R"("waitSeconds":1e30)", R"("waitSeconds":null)"}) {
    EXPECT_EQ(slept(other), 0s) << other;
  }
}

TEST_F(GetResultToolTest, TellsProgressAndCountsIt) {
  Pipe pipe;
  TestFiles::write(file, R"({"status":"queued","queuePosition":1})");
  bench.clock.runAfterEachSleep([&](int sleeps) {
    if (sleeps == 1) TestFiles::replace(file, R"({"status":"running","message":"a/b"})");
    if (sleeps == 4) TestFiles::replace(file, R"({"status":"running"})");
    if (sleeps == 5) TestFiles::replace(file, R"({"status":"passed"})");
  });
  {
    MessageWriter writer(std::move(pipe.writing));
    bench.call(tool, arguments(R"("waitSeconds":10)"), ProgressReporter(writer, "t"));
  }
  const auto notification = [](const std::string& message, int number) {
    return R"({"jsonrpc":"2.0","method":"notifications\/progress","params":{"message":")" +
           message + R"(","progress":)" + std::to_string(number) + R"(,"progressToken":"t"}})" +
           "\n";
  };
  EXPECT_EQ(readToEnd(pipe.reading.get()), notification("queued — position 1", 1) +
                                               notification("running — a\\/b", 2) +
                                               notification("running", 3));
}

TEST_F(GetResultToolTest, AddsAdviceAndThenTheStepsPictures) {
  TestFiles::write(file, R"({"status":"failed","message":"An alert"})");
  const auto texts = textsOf(bench.call(tool, arguments(R"("includeStepTrace":true)")).content);
  ASSERT_EQ(texts.size(), 3U);
  EXPECT_EQ(texts[0],
            "status: failed (terminal)\n\n{\"status\":\"failed\",\"message\":\"An alert\"}");
  EXPECT_TRUE(texts[1].starts_with("---\nIF THE FAILURE WAS AN OS INTERRUPT")) << texts[1];
  EXPECT_TRUE(texts[2].starts_with("(no step-trace for this run")) << texts[2];
}

TEST_F(GetResultToolTest, AddsPicturesOnlyForTrue) {
  TestFiles::write(file, R"({"status":"passed"})");
  for (const char* more : {"", R"("includeStepTrace":false)", R"("includeStepTrace":1)",
                           R"("includeStepTrace":"true","traceTestIndex":1)"}) {
    EXPECT_EQ(bench.call(tool, arguments(more)).content.size(), 1U) << more;
  }
}

TEST_F(GetResultToolTest, TakesIndicesThatAreIntegers) {
  TestFiles::write(file, R"({"status":"passed"})");
  const auto trace = [&](const std::string& more) {
    return textsOf(bench.call(tool, arguments(R"("includeStepTrace":true,)" + more)).content)
        .back();
  };
  EXPECT_EQ(trace(R"("traceTestIndex":3.0)"),
            "(traceTestIndex 3 is out of range — this run carries 0 test(s), 0-based)");
  EXPECT_TRUE(trace(R"("traceTestIndex":"3")").starts_with("(no step-trace for this run"));
  EXPECT_TRUE(trace(R"("traceTestIndex":1.5)").starts_with("(no step-trace for this run"));
}

TEST_F(GetResultToolTest, PublishesItsSchema) {
  const AnyCodable schema = tool.inputSchema();
  EXPECT_EQ(toJson(*schema.find("required")), R"(["requestId"])");
  EXPECT_EQ(toJson(*schema.find("additionalProperties")), "false");
  EXPECT_EQ(toJson(*schema.find("properties")->find("waitSeconds")),
            R"({"default":0,"description":"Long-poll up to this many seconds for a terminal )"
            R"(status. 0 = return the current snapshot immediately.","maximum":240,"minimum":0,)"
            R"("type":"integer"})");
}

/// What is said about results that are not terminal depends on whether the app runs.
class GetResultToolAppTest : public GetResultToolTest {
 protected:
  GetResultToolAppTest() { TestFiles::write(file, R"({"status":"running"})"); }

  void lastUpdated(std::chrono::nanoseconds ago) {
    TestFiles::setModified(file, bench.clock.now() - ago);
  }
  void openApp() {
    app.emplace(bench.home.path() / "Applications" / "Corvane.app");
    app->open();
  }

  std::optional<TemporaryApp> app;
};

std::string inProgress(int seconds) {
  return "status: running (NOT terminal — run still in progress, call get_result again)\n"
         "appRunning: true\nsecondsSinceUpdate: " +
         std::to_string(seconds) + "\n\n{\"status\":\"running\"}";
}

std::string stale(int seconds) {
  return "status: running (NOT terminal — STALE: no update in " + std::to_string(seconds) +
         "s despite Corvane running; active envelopes heartbeat every ~20s. The run may be wedged "
         "— consider cancel_run, or get_status for the live picture.)\nappRunning: true"
         "\n\n{\"status\":\"running\"}";
}

TEST_F(GetResultToolAppTest, CallsARunStaleFromNinetyOneSecondsOn) {
  openApp();
  lastUpdated(0s);
  EXPECT_EQ(text(), inProgress(0));
  lastUpdated(90s);
  EXPECT_EQ(text(), inProgress(90));
  lastUpdated(91s - 1ns);
  EXPECT_EQ(text(), inProgress(90));
  lastUpdated(91s);
  EXPECT_EQ(text(), stale(91));
  lastUpdated(24h);
  EXPECT_EQ(text(), stale(86'400));
  // A clock that went backwards meanwhile.
  lastUpdated(-1500ms);
  EXPECT_EQ(text(), inProgress(-1));
}

TEST_F(GetResultToolAppTest, MeasuresTheAgeWhenTheWaitIsOver) {
  openApp();
  lastUpdated(0s);
  EXPECT_EQ(text(R"("waitSeconds":90)"), inProgress(90));
  lastUpdated(0s);
  EXPECT_EQ(text(R"("waitSeconds":91)"), stale(91));
}

TEST_F(GetResultToolAppTest, SaysWhenTheAppIsGone) {
  for (const int seconds : {0, 90, 91, 1000}) {
    lastUpdated(std::chrono::seconds(seconds));
    EXPECT_EQ(text(),
              "status: running (NOT terminal — but Corvane.app is NOT running)\n"
              "appRunning: false\nsecondsSinceUpdate: " +
                  std::to_string(seconds) +
                  "\n\n"
                  "This run died with the app; it will not progress. run_test/create_test relaunch "
                  "Corvane (which settles orphaned runs as 'error' at startup).\n\n"
                  "{\"status\":\"running\"}");
  }
}

TEST_F(GetResultToolAppTest, AddsPicturesToARunThatGoesOn) {
  const auto texts = textsOf(bench.call(tool, arguments(R"("includeStepTrace":true)")).content);
  ASSERT_EQ(texts.size(), 2U);
  EXPECT_TRUE(texts[1].starts_with("(no step-trace for this run")) << texts[1];
}

TEST_F(GetResultToolAppTest, IsNoFailureWhenTheTimeIsUp) {
  EXPECT_FALSE(bench.call(tool, arguments(R"("waitSeconds":2)")).isError);
}

}  // namespace
}  // namespace corvane::testing
