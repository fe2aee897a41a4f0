#include "corvanectl/follow/RunPlan.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

using namespace ctl;

const std::string workspace =
    "Corvane workspace context (updated 2026-01-31T12:00:00Z).\n"
    "warning: Corvane.app is not running; context reflects the last session and may be stale. "
    "run_test/create_test will launch it.\n\n"
    R"({"otherProjects":[],"project":{"name":"Shop","suites":[{"name":"Smoke","testIds":["b","a"]},)"
    R"({"name":"Odd","testIds":["z"]}],"tests":[)"
    R"({"id":"a","name":"Sign in","steps":[{"type":"tap","description":"Tap"}]},)"
    R"({"id":"b","name":"Pay","steps":[{"type":"tap","description":"Tap Pay"},)"
    R"({"type":"visualAssert","description":"Look"}]}]},"schemaVersion":1})";

std::string planned(const RunTarget& target) {
  const auto plan = planOf(describedProject(workspace).value(), target);
  if (!plan) return "none";
  std::string text;
  for (const auto& test : plan->tests) {
    text += test.name + ":";
    for (const auto& step : test.steps) text += " " + step;
    text += "; ";
  }
  return text + std::to_string(plan->stepCount());
}

// Fails when tests come in the order of the project in place of the one they run in.
TEST(RunPlan, FollowsTheTarget) {
  EXPECT_EQ(planned({{"Pay"}, {}}), "Pay: Tap Pay Look; 2");
  EXPECT_EQ(planned({{}, "Smoke"}), "Pay: Tap Pay Look; Sign in: Tap; 3");
  EXPECT_EQ(planned({}), "Sign in: Tap; Pay: Tap Pay Look; 3");
  EXPECT_EQ(planned({{"Pay", "pay"}, {}}), "none");
  EXPECT_EQ(planned({{}, "Odd"}), "none");
  EXPECT_EQ(planned({{}, "None"}), "none");
}

TEST(RunPlan, NeedsAProjectThatIsShownInFull) {
  EXPECT_FALSE(describedProject("error:unknown_project\n\nNo project named 'x'."));
  EXPECT_FALSE(
      describedProject("Corvane workspace context (updated x).\n\n{\"otherProjects\":[]}"));
  EXPECT_FALSE(describedProject("Corvane workspace context (updated x).\n\n{\"project\":{}}"));
}

/// Where a live count stands, as test, step and description.
std::string place(std::int64_t current, std::int64_t total, std::size_t finished) {
  const RunPlan plan{{{"A", {"a0", "a1"}}, {"B", {"b0", "b1", "b2"}}}};
  const auto step = placeOf(
      {.currentStep = current, .totalSteps = total, .lastStepStatus = {}, .lastStepTitle = {}},
      finished, &plan);
  return (step.test ? step.test->name : "?") + " " + std::to_string(step.index) + "/" +
         std::to_string(step.count) + " " + step.description;
}

// Fails when a count that runs through one test is taken for one of the run, or the other way.
TEST(RunPlan, FindsTheStepOfALiveCount) {
  EXPECT_EQ(place(1, 5, 0), "A 0/2 a0");
  EXPECT_EQ(place(2, 5, 0), "A 1/2 a1");
  EXPECT_EQ(place(3, 5, 1), "B 0/3 b0");
  EXPECT_EQ(place(5, 5, 1), "B 2/3 b2");
  EXPECT_EQ(place(2, 2, 0), "A 1/2 a1");
  EXPECT_EQ(place(1, 3, 1), "B 0/3 b0");
  // Before the first step, and where nothing is known of it.
  EXPECT_EQ(place(0, 5, 0), "A 0/2 a0");
  EXPECT_EQ(place(6, 5, 0), "? 5/5 ");
  EXPECT_EQ(place(1, 4, 0), "? 0/4 ");
  EXPECT_EQ(place(1, 5, 1), "? 0/5 ");
  EXPECT_EQ(place(3, 2, 0), "? 2/2 ");
  EXPECT_EQ(place(1, 9, 2), "? 0/9 ");
}

// Fails when something is made up where a test has not been run before.
TEST(RunPlan, MeasuresWhatIsLeftByEarlierRuns) {
  const RunPlan plan{{{"A", {}}, {"B", {}}}};
  EXPECT_EQ(secondsLeft(plan, 0, 2, {{"A", 5}, {"B", 7}}), 10);
  EXPECT_EQ(secondsLeft(plan, 0, 9, {{"A", 5}, {"B", 7}}), 7);
  EXPECT_EQ(secondsLeft(plan, 1, 2, {{"B", 7}}), 5);
  EXPECT_EQ(secondsLeft(plan, 0, 2, {{"B", 7}}), std::nullopt);
}

}  // namespace
}  // namespace corvane::testing
