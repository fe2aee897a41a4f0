#include "corvane_mcp/results/ResultTexts.h"

#include <gtest/gtest.h>

namespace corvane {
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

}  // namespace
}  // namespace corvane
