#include "corvanectl/report/Report.h"

#include <gtest/gtest.h>

#include "ReportFixture.h"

namespace corvane::testing {
namespace {

using namespace ctl;

std::string factsOf(const Report& report) {
  std::string text;
  for (const auto& fact : report.facts) text += fact.label + ": " + fact.value + "\n";
  return text;
}

TEST(Report, TellsOfARun) {
  const Report report = failedRun();
  EXPECT_EQ(report.title, "Shop");
  EXPECT_EQ(report.status, "failed");
  EXPECT_EQ(report.outcome, Outcome::failed);
  EXPECT_EQ(report.totals, "1 of 2 tests passed in 15 s");
  EXPECT_EQ(report.remarks, std::vector<std::string>{"One failed"});
  EXPECT_EQ(report.tests.size(), 2U);
  EXPECT_EQ(factsOf(report),
            "Platform: iOS\n"
            "App under test: com.shop 1.2 build 45\n"
            "Credits: 1.5 spent, 20 left\n"
            "Kind of request: run_test\n");
}

TEST(Report, TellsWhatBlocks) {
  const Report report = reportOf("blocked", R"("blocked":{"code":"budgetExceeded",
"message":"No credits left","url":"https://example.com/buy"})");
  EXPECT_EQ(report.title, "run_test");
  EXPECT_EQ(report.outcome, Outcome::other);
  EXPECT_EQ(report.remarks, std::vector<std::string>{"budgetExceeded: No credits left"});
  EXPECT_EQ(report.url, "https://example.com/buy");
}

TEST(Report, TellsOfIssuesAndOfWhatWasMade) {
  EXPECT_EQ(reportOf("importFailed", R"("validationIssues":[{"severity":"error",
"code":"missingTests","path":"tests","message":"empty"}])")
                .remarks,
            std::vector<std::string>{"error missingTests at tests: empty"});
  EXPECT_EQ(
      reportOf("authored", R"("authoredTests":[{"testId":"1","testName":"A","stepCount":1},
{"testId":"2","testName":"B","stepCount":5,"completionPercent":80}])")
          .remarks,
      (std::vector<std::string>{"authored 'A' (1 step)", "authored 'B' (5 steps, 80% complete)"}));
  EXPECT_EQ(reportOf("extracted", R"("udi":{"udiId":"1","name":"Sign in","stepCount":2})").remarks,
            std::vector<std::string>{"building block 'Sign in' (2 steps)"});
}

// Fails when a result of another form is passed over in silence.
TEST(Report, ShowsAResultOfAnotherFormAsItIs) {
  const Report report = makeReport("r1", "passed", R"({"status":"passed","tests":"all"})");
  EXPECT_EQ(report.title, "Request");
  EXPECT_EQ(report.outcome, Outcome::passed);
  ASSERT_EQ(report.remarks.size(), 2U);
  EXPECT_TRUE(report.remarks[0].starts_with("The result has another form than results have: "));
  EXPECT_EQ(report.remarks[1], R"({"status":"passed","tests":"all"})");
}

TEST(Report, NamesAStepByWhatItDoes) {
  AgentRunResult::Step each = step(3, "Tap Pay", "failed");
  EXPECT_EQ(headlineOf(each), "step 3 failed: TAP: Tap Pay");
  each.description = "";
  EXPECT_EQ(headlineOf(each), "step 3 failed: TAP");
  each.title = "";
  each.description = "Tap Pay";
  EXPECT_EQ(headlineOf(each), "step 3 failed: Tap Pay");
}

TEST(Outcome, IsToldFromStatusAndHealing) {
  AgentRunResult::Step each = step(0, "", "passed");
  EXPECT_EQ(outcomeOf(each), Outcome::passed);
  EXPECT_FALSE(isNotable(each));
  each.healedByAI = true;
  EXPECT_EQ(outcomeOf(each), Outcome::healed);
  EXPECT_EQ(statusWord(each), "healed");
  EXPECT_TRUE(isNotable(each));
  // Fails when healing hides that a step has failed after all.
  each.status = "failed";
  EXPECT_EQ(outcomeOf(each), Outcome::failed);
  EXPECT_EQ(statusWord(each), "failed");
  EXPECT_EQ(outcomeOf(step(0, "", "warning")), Outcome::other);
  EXPECT_FALSE(isNotable(step(0, "", "skipped")));
}

TEST(Outcome, OfATestIsHealedWhenAStepWas) {
  AgentRunResult::Test test;
  test.status = "passed";
  test.steps = {step(0, "", "passed"), step(1, "", "healed")};
  EXPECT_EQ(outcomeOf(test), Outcome::healed);
  test.status = "failed";
  EXPECT_EQ(outcomeOf(test), Outcome::failed);
}

}  // namespace
}  // namespace corvane::testing
