#include "corvanectl/results/RequestResult.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

using namespace ctl;

TEST(RequestResult, GivesEveryStatusItsExitStatus) {
  for (const char* status : {"passed", "imported", "authored", "extracted", "deleted"}) {
    EXPECT_EQ(exitStatusOf(status), ExitStatus::success) << status;
  }
  for (const char* status : {"failed", "buildFailed", "importFailed"}) {
    EXPECT_EQ(exitStatusOf(status), ExitStatus::failure) << status;
  }
  for (const char* status : {"warning", "cancelled", "blocked", "error", "from the future"}) {
    EXPECT_EQ(exitStatusOf(status), ExitStatus::otherOutcome) << status;
  }
}

std::string summaryOf(const std::string& members) {
  return summarizeResult(R"({"schemaVersion":3,"requestId":"r","source":"run_test",)"
                         R"("terminal":true,"updatedAt":"2026-01-31T12:00:00Z",)" +
                             members + "}",
                         "unused");
}

TEST(RequestResult, TellsOfTestsAndTheirNotableSteps) {
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

// Fails when the healing of a step hides that it has failed after all.
TEST(RequestResult, CallsAStepFailedThatHealingDidNotSave) {
  EXPECT_EQ(summaryOf(R"("status":"failed","tests":[{"testId":"1","testName":"Pay",
"status":"failed","durationSeconds":3,"steps":[{"index":0,"title":"Tap Pay","description":"",
"status":"failed","healedByAI":true,"failureReason":"No button"}]}])"),
            "failed\n"
            "  failed  Pay  (1 step, 3 s)\n"
            "    step 0 failed: Tap Pay\n"
            "      No button\n");
}

TEST(RequestResult, TellsWhatBlocks) {
  EXPECT_EQ(summaryOf(R"("status":"blocked","blocked":{"code":"budgetExceeded",
"message":"No credits left","url":"https://example.com/buy"})"),
            "blocked\nbudgetExceeded: No credits left\nhttps://example.com/buy\n");
}

TEST(RequestResult, TellsOfIssuesAndOfWhatWasMade) {
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

TEST(RequestResult, LetsNoControlCharacterThrough) {
  EXPECT_EQ(summaryOf(R"("status":"error","message":"a\u001b[2Jb")"), "error\na\\u001b[2Jb\n");
}

TEST(RequestResult, ShowsTheTextWhenItHasAnotherForm) {
  EXPECT_EQ(summarizeResult(R"({"status":"passed"})", "passed"),
            "passed\n{\"status\":\"passed\"}\n");
  EXPECT_EQ(summarizeResult("", "passed"), "passed\n\n");
}

}  // namespace
}  // namespace corvane::testing
