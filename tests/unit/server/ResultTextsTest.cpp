#include "corvane_mcp/results/ResultTexts.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

std::string progress(std::string status, std::string rawJSON) {
  return ResultTexts::progressLine({std::move(rawJSON), std::move(status), false, std::nullopt});
}

bool advised(std::string rawJSON, bool terminal = true, std::string status = "failed") {
  return ResultTexts::interruptAdvice(
             {std::move(rawJSON), std::move(status), terminal, std::nullopt})
      .has_value();
}

TEST(ProgressLineTest, TellsThePlaceInTheQueue) {
  EXPECT_EQ(progress("queued", R"({"queuePosition":2})"), "queued — position 2");
  EXPECT_EQ(progress("queued", R"({"queuePosition":2.0,"message":"m"})"), "queued — position 2");
  EXPECT_EQ(progress("queued", R"({"queuePosition":"2"})"), "queued");
  EXPECT_EQ(progress("queued", R"({"queuePosition":1.5,"message":"m"})"), "queued — m");
  EXPECT_EQ(progress("building", R"({"queuePosition":2})"), "building");
}

TEST(ProgressLineTest, TellsTheStep) {
  EXPECT_EQ(progress("running", R"({"progress":{"currentStep":3,"totalSteps":12}})"),
            "running — step 3/12");
  EXPECT_EQ(progress("running",
                     R"({"progress":{"currentStep":3,"totalSteps":12,"lastStepTitle":"Tap"}})"),
            "running — step 3/12: Tap");
  EXPECT_EQ(progress("running", R"({"progress":{"currentStep":3,"totalSteps":12,)"
                                R"("lastStepTitle":"Tap","lastStepStatus":"passed"}})"),
            "running — step 3/12: Tap passed");
  EXPECT_EQ(progress("running",
                     R"({"progress":{"currentStep":3,"totalSteps":12,"lastStepStatus":"healed"}})"),
            "running — step 3/12 healed");
}

TEST(ProgressLineTest, FallsBackWhenTheStepsAreIncomplete) {
  for (const char* json : {R"({"progress":{"currentStep":3},"message":"m"})",
                           R"({"progress":{"currentStep":"3","totalSteps":12},"message":"m"})",
                           R"({"progress":[3,12],"message":"m"})", R"({"message":"m"})"}) {
    EXPECT_EQ(progress("running", json), "running — m") << json;
  }
}

TEST(ProgressLineTest, ListsAuthoredTests) {
  EXPECT_EQ(progress("authored", R"({"authoredTests":[{"testName":"Login","stepCount":4}]})"),
            "authored — 1 test: 'Login' (4 steps). Inspect each with describe_project, then "
            "run_test / compose.");
  EXPECT_EQ(progress("warning", R"({"authoredTests":[{"testName":"A","stepCount":1},)"
                                R"({"testName":"B","stepCount":0}],"message":"m"})"),
            "warning — 2 tests: 'A' (1 steps), 'B' (0 steps). Inspect each with describe_project, "
            "then run_test / compose.");
  EXPECT_EQ(progress("authored", R"({"authoredTests":[]})"),
            "authored — 0 tests: . Inspect each with describe_project, then run_test / compose.");
  EXPECT_EQ(progress("authored", R"({"authoredTests":{},"message":"m"})"), "authored — m");
  EXPECT_EQ(progress("authoring", R"({"authoredTests":[]})"), "authoring");
}

TEST(ProgressLineTest, ShowsTheStatusAndTheMessageOtherwise) {
  EXPECT_EQ(progress("building", R"({})"), "building");
  EXPECT_EQ(progress("building", R"({"message":"Compiling a/b"})"), "building — Compiling a/b");
  EXPECT_EQ(progress("building", R"({"message":""})"), "building — ");
  EXPECT_EQ(progress("building", R"({"message":7})"), "building");
  EXPECT_EQ(progress("unheard of", R"({"message":"m"})"), "unheard of — m");
}

TEST(InterruptAdviceTest, ComesWithAnyOfItsWordsInAnyCase) {
  for (const char* word :
       {"permission", "dialog", "prompt", "sheet", "alert", "allow", "notification", "rating",
        "pop-up", "popup", "Allow", "ALERT", "PerMission", "swallowed", "migrating"}) {
    EXPECT_TRUE(advised(std::string(R"({"x":")") + word + "\"}")) << word;
  }
}

TEST(InterruptAdviceTest, LooksAtTheWholeFile) {
  EXPECT_TRUE(advised(R"({"dialogs":0,"status":"failed"})"));
  EXPECT_TRUE(advised(R"({"testName":"Notifications"})"));
}

TEST(InterruptAdviceTest, IsLeftOutWithoutThoseWords) {
  EXPECT_FALSE(advised(R"({"failureReason":"Button not found","pop up":1})"));
}

TEST(InterruptAdviceTest, IsForRunsThatHaveFailed) {
  EXPECT_FALSE(advised(R"({"x":"alert"})", true, "passed"));
  EXPECT_FALSE(advised(R"({"x":"alert"})", true, "error"));
  EXPECT_FALSE(advised(R"({"x":"alert"})", true, "Failed"));
  EXPECT_FALSE(advised(R"({"x":"alert"})", false, "failed"));
}

using Texts = std::vector<std::string>;

constexpr const char* noTrace =
    "(no step-trace for this run — the run may predate trace support or produced no capture "
    "session)";
constexpr const char* noStep =
    "(run has a capture session but no step indices; pass traceStepIndex to pick a step)";

class StepTraceChoiceTest : public ::testing::Test {
 protected:
  Texts texts(std::string_view rawJSON) const { return textsOf(choice.blocks(rawJSON)); }

  StepTraceChoice choice;
};

TEST_F(StepTraceChoiceTest, NeedsATraceWithAFolder) {
  for (const char* json : {R"({})", R"({"trace":null})", R"({"trace":[]})", R"({"trace":{}})",
                           R"({"trace":{"artifactsDir":7,"failedStepIndex":1}})",
                           R"({"tests":[{"trace":{"artifactsDir":"/x"}}]})"}) {
    EXPECT_EQ(texts(json), Texts{noTrace}) << json;
  }
}

TEST_F(StepTraceChoiceTest, NeedsAStep) {
  EXPECT_EQ(texts(R"({"trace":{"artifactsDir":"/x"}})"), Texts{noStep});
  EXPECT_EQ(texts(R"({"trace":{"artifactsDir":"/x","failedStepIndex":"1","lastStepIndex":1.5}})"),
            Texts{noStep});
}

TEST_F(StepTraceChoiceTest, PrefersTheStepAskedForThenTheFailedThenTheLast) {
  // A capture session without frames names the step that was looked for.
  const TemporaryHome home;
  TestFiles::write(home.path() / "session.json", R"({"frames":[]})");
  const std::string start = R"({"trace":{"artifactsDir":")" + home.path().string() + '"';
  const auto looked = [](int step) {
    return Texts{"(no frames recorded for step " + std::to_string(step) +
                 " — it may not have executed, or its session was pruned)"};
  };
  EXPECT_EQ(texts(start + R"(,"lastStepIndex":5}})"), looked(5));
  EXPECT_EQ(texts(start + R"(,"failedStepIndex":3,"lastStepIndex":5}})"), looked(3));
  EXPECT_EQ(texts(start + R"(,"failedStepIndex":null,"lastStepIndex":5}})"), looked(5));
  choice.stepIndex = 0;
  EXPECT_EQ(texts(start + R"(,"failedStepIndex":3,"lastStepIndex":5}})"), looked(0));
  EXPECT_EQ(texts(start + "}}"), looked(0));
}

TEST_F(StepTraceChoiceTest, TakesTheTraceOfTheTestAskedFor) {
  choice.testIndex = 1;
  EXPECT_EQ(texts(R"({"trace":{},"tests":[{},{"trace":{"artifactsDir":"/x"}}]})"), Texts{noStep});
  EXPECT_EQ(texts(R"({"trace":{"artifactsDir":"/x"},"tests":[{},{"trace":{}}]})"), Texts{noTrace});
}

TEST_F(StepTraceChoiceTest, SaysWhenTheTestHasNoTrace) {
  choice.testIndex = 0;
  const Texts expected{
      "(no per-test trace for tests[0] — the run may predate per-test trace support)"};
  EXPECT_EQ(texts(R"({"trace":{"artifactsDir":"/x","lastStepIndex":1},"tests":[{}]})"), expected);
  EXPECT_EQ(texts(R"({"tests":[{"trace":null}]})"), expected);
  EXPECT_EQ(texts(R"({"tests":["x"]})"), expected);
}

TEST_F(StepTraceChoiceTest, SaysWhenThereIsNoSuchTest) {
  choice.testIndex = 3;
  EXPECT_EQ(texts(R"({"tests":[{},{}],"trace":{"artifactsDir":"/x"}})"),
            Texts{"(traceTestIndex 3 is out of range — this run carries 2 test(s), 0-based)"});
  EXPECT_EQ(texts(R"({"tests":{}})"),
            Texts{"(traceTestIndex 3 is out of range — this run carries 0 test(s), 0-based)"});
  choice.testIndex = 2;
  EXPECT_EQ(texts(R"({"tests":[{},{}]})"),
            Texts{"(traceTestIndex 2 is out of range — this run carries 2 test(s), 0-based)"});
  choice.testIndex = -1;
  EXPECT_EQ(texts(R"({"tests":[{}]})"),
            Texts{"(traceTestIndex -1 is out of range — this run carries 1 test(s), 0-based)"});
  choice.testIndex = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(texts("{}"), Texts{"(traceTestIndex 9223372036854775807 is out of range — this run "
                               "carries 0 test(s), 0-based)"});
}

}  // namespace
}  // namespace corvane::testing
