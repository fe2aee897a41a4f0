#include <gtest/gtest.h>

#include "corvanectl/protocol/ProtocolError.h"
#include "corvanectl/protocol/ToolResult.h"
#include "corvanectl/results/ResultAnswer.h"
#include "corvanectl/results/ResultSummary.h"

#include "CorvaneCore/json/JsonReader.h"

namespace corvane {
namespace {

ToolResult toolResult(std::string_view json) {
  return ToolResult::from(readJson(json));
}

TEST(ToolResult, ReadsEveryKindOfBlock) {
  const auto result = toolResult(
      R"({"content":[{"type":"text","text":"a"},{"type":"image","data":"Zg==","mimeType":"image/png"},)"
      R"({"type":"audio","data":"x"}],"isError":true})");
  const std::vector<ToolResult::Block> expected{
      ToolResult::Text{"a"}, ToolResult::Image{"Zg==", "image/png"}, ToolResult::Other{"audio"}};
  EXPECT_EQ(result.content, expected);
  EXPECT_TRUE(result.isError);
  EXPECT_EQ(result.firstText(), "a");
}

TEST(ToolResult, NeedsNoErrorFlagAndNoBlocks) {
  const auto result = toolResult(R"({"content":[]})");
  EXPECT_FALSE(result.isError);
  EXPECT_EQ(result.firstText(), "");
}

TEST(ToolResult, RefusesOtherForms) {
  for (const char* json :
       {"null", "{}", R"({"content":{}})", R"({"content":["x"]})", R"({"content":[{"text":"x"}]})",
        R"({"content":[{"type":"text"}]})", R"({"content":[{"type":"image","data":"x"}]})"}) {
    EXPECT_THROW((void)toolResult(json), ProtocolError) << json;
  }
}

TEST(ResultAnswer, ReadsATerminalAnswer) {
  const auto answer = ResultAnswer::parse("status: failed (terminal)\n\n{\"a\":\"x\n\ny\"}");
  EXPECT_EQ(answer.status, "failed");
  EXPECT_TRUE(answer.terminal);
  EXPECT_EQ(answer.json, "{\"a\":\"x\n\ny\"}");
}

TEST(ResultAnswer, TellsWhetherARunIsWell) {
  const auto running = ResultAnswer::parse(
      "status: running (NOT terminal — run still in progress, call get_result again)\n"
      "appRunning: true\nsecondsSinceUpdate: 3\n\n{}");
  EXPECT_EQ(running.status, "running");
  EXPECT_FALSE(running.terminal);
  EXPECT_TRUE(running.healthy);
  EXPECT_EQ(running.json, "");

  const auto orphaned = ResultAnswer::parse(
      "status: running (NOT terminal — but Corvane.app is NOT running)\nappRunning: false\n\n{}");
  EXPECT_FALSE(orphaned.healthy);
  EXPECT_EQ(orphaned.headline, "running (NOT terminal — but Corvane.app is NOT running)");

  const auto pending = ResultAnswer::parse(
      "status: pending (Corvane has not picked up the request yet)\n\n{}\n\nmore");
  EXPECT_EQ(pending.status, "pending");
  EXPECT_FALSE(pending.terminal);
  EXPECT_FALSE(pending.healthy);
}

TEST(ResultAnswer, RefusesOtherTexts) {
  EXPECT_THROW((void)ResultAnswer::parse(""), ProtocolError);
  EXPECT_THROW((void)ResultAnswer::parse("error:unknown"), ProtocolError);
}

TEST(ResultAnswer, GivesEveryStatusItsExitStatus) {
  const auto exitStatus = [](std::string_view status) {
    return ResultAnswer::parse("status: " + std::string(status) + " (terminal)").exitStatus();
  };
  for (const char* status : {"passed", "imported", "authored", "extracted", "deleted"}) {
    EXPECT_EQ(exitStatus(status), ExitStatus::success) << status;
  }
  for (const char* status : {"failed", "buildFailed", "importFailed"}) {
    EXPECT_EQ(exitStatus(status), ExitStatus::failure) << status;
  }
  for (const char* status : {"warning", "cancelled", "blocked", "error", "from the future"}) {
    EXPECT_EQ(exitStatus(status), ExitStatus::otherOutcome) << status;
  }
}

std::string summaryOf(const std::string& members) {
  return summarizeResult(R"({"schemaVersion":3,"requestId":"r","source":"run_test",)"
                         R"("terminal":true,"updatedAt":"2026-01-31T12:00:00Z",)" +
                             members + "}",
                         "unused");
}

TEST(ResultSummary, TellsOfTestsAndTheirNotableSteps) {
  EXPECT_EQ(
      summaryOf(
          R"("status":"failed","projectName":"Shop","platform":"iOS","message":"One test failed",
"appUnderTest":{"bundleId":"com.shop","version":"1.2","build":"45"},
"tests":[{"testId":"1","testName":"Login","status":"passed","durationSeconds":12.34,"steps":[
{"index":0,"title":"Open","description":"","status":"passed"},
{"index":1,"title":"Tap OK","description":"","status":"healed"},
{"index":2,"title":"Tap Go","description":"","status":"passed","healedByAI":true}]},
{"testId":"2","testName":"Pay","status":"failed","durationSeconds":3,"steps":[
{"index":0,"title":"Tap Pay","description":"","status":"failed","failureReason":"No\nbutton"}]}],
"summary":{"tests":2,"testsPassed":1,"durationSeconds":75.2},"creditsSpent":1.5,"creditBalance":20)"),
      "failed: Shop on iOS (com.shop 1.2 build 45)\n"
      "One test failed\n"
      "  passed  Login  (3 steps, 12 s)\n"
      "    step 1 healed: Tap OK\n"
      "    step 2 healed: Tap Go\n"
      "  failed  Pay  (1 step, 3 s)\n"
      "    step 0 failed: Tap Pay\n"
      "      No button\n"
      "1 of 2 tests passed in 1 min 15 s\n"
      "credits: 1.5 spent, 20 left\n");
}

TEST(ResultSummary, TellsWhatBlocks) {
  EXPECT_EQ(summaryOf(R"("status":"blocked","blocked":{"code":"budgetExceeded",
"message":"No credits left","url":"https://example.com/buy"})"),
            "blocked\nbudgetExceeded: No credits left\nhttps://example.com/buy\n");
}

TEST(ResultSummary, TellsOfIssuesAndOfWhatWasMade) {
  EXPECT_EQ(summaryOf(R"("status":"importFailed","validationIssues":[{"severity":"error",
"code":"missingTests","path":"tests","message":"empty"}])"),
            "importFailed\nerror missingTests at tests: empty\n");
  EXPECT_EQ(
      summaryOf(R"("status":"authored","authoredTests":[{"testId":"1","testName":"A","stepCount":1},
{"testId":"2","testName":"B","stepCount":5,"completionPercent":80}],
"authoredTest":{"testId":"1","testName":"A","stepCount":1})"),
      "authored\n  authored  A  (1 step)\n  authored  B  (5 steps, 80% complete)\n");
  EXPECT_EQ(summaryOf(R"("status":"extracted","udi":{"udiId":"1","name":"Sign in","stepCount":2,
"parameterNames":["user","password"]})"),
            "extracted\n  building block  Sign in  (2 steps; parameters user password)\n");
}

TEST(ResultSummary, LetsNoControlCharacterThrough) {
  EXPECT_EQ(summaryOf(R"("status":"error","message":"a\u001b[2Jb")"), "error\na\\u001b[2Jb\n");
}

TEST(ResultSummary, ShowsTheTextWhenItHasAnotherForm) {
  EXPECT_EQ(summarizeResult(R"({"status":"passed"})", "passed"),
            "passed\n{\"status\":\"passed\"}\n");
  EXPECT_EQ(summarizeResult("", "passed"), "passed\n\n");
}

}  // namespace
}  // namespace corvane
