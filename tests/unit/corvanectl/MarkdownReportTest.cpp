#include "corvanectl/report/MarkdownReport.h"

#include <gtest/gtest.h>

#include "ReportFixture.h"

namespace corvane::testing {
namespace {

using namespace ctl;

TEST(MarkdownReport, HasATableAndTheStepsToLookAt) {
  EXPECT_EQ(markdownReport(failedRun()), R"(## ❌ Shop: failed

1 of 2 tests passed in 15 s

> One failed

Platform: iOS · App under test: com\.shop 1\.2 build 45 · Credits: 1\.5 spent, 20 left · Kind of request: run\_test · Request: r1

| | Test | Status | Steps | Time |
|:-:|---|---|--:|--:|
| 🩹 | Login | passed | 1, 1 healed | 12 s |
| ❌ | Pay | failed | 3 | 3 s |

### 🩹 Login

- 🩹 step 0 healed\: TAP\: Tap OK (2 s)

### ❌ Pay

- ❌ step 1 failed\: TAP\: Tap Pay
  > No button
)");
}

TEST(MarkdownReport, TellsOfARequestWithoutTests) {
  EXPECT_EQ(markdownReport(reportOf("blocked", R"("blocked":{"code":"c","message":"m",
"url":"https://x"})")),
            "## ⚠️ run\\_test: blocked\n\n> c\\: m\n\nhttps\\://x\n\n"
            "Kind of request: run\\_test · Request: r1\n");
}

// Fails when a name is taken for markup, or ends its cell of the table.
TEST(MarkdownReport, ShowsMarkupAsText) {
  Report report;
  report.title = "# <b>*a*</b> `b` [c](d) e|f\ng ~h~ $i$ @j \\";
  report.status = "passed";
  report.outcome = Outcome::passed;
  report.requestId = "r1";
  EXPECT_EQ(markdownReport(report),
            "## ✅ \\# \\<b\\>\\*a\\*\\</b\\> \\`b\\` \\[c\\]\\(d\\) e\\|f g \\~h\\~ \\$i\\$ "
            "\\@j \\\\: passed\n\nRequest: r1\n");
}

TEST(MarkdownReport, KeepsTheLinesOfAReason) {
  Report report = failedRun();
  report.tests[1].steps[1].failureReason = "One\n\n- two\r\n";
  const std::string text = markdownReport(report);
  EXPECT_TRUE(text.ends_with("Tap Pay\n  > One\\\n  > \\\n  > \\- two\n")) << text;
}

/// A run of so many tests, all of which passed.
Report passedRun(std::size_t tests) {
  Report report;
  report.title = "Shop";
  report.status = "passed";
  report.outcome = Outcome::passed;
  report.requestId = "r1";
  report.tests.resize(tests);
  for (auto& test : report.tests) {
    test.testName = "A";
    test.status = "passed";
  }
  return report;
}

// Fails when a summary becomes so long that the build service shows nothing of it.
TEST(MarkdownReport, EndsWhereThereIsNoMoreRoom) {
  const std::string whole = markdownReport(passedRun(3));
  EXPECT_EQ(markdownReport(passedRun(3), whole.size()), whole);
  EXPECT_EQ(markdownReport(passedRun(3), whole.size() - 1),
            markdownReport(passedRun(2)) + "\nLeft out for want of room: 1\n");
  EXPECT_LT(markdownReport(passedRun(100'000)).size(), std::size_t{1} << 20);
}

TEST(MarkdownReport, CutsAVeryLongReason) {
  Report report = failedRun();
  report.tests[1].steps[1].failureReason = std::string(20'000, 'x');
  const std::string text = markdownReport(report);
  EXPECT_TRUE(text.ends_with("  > " + std::string(10'000, 'x') + "…\n"));
}

}  // namespace
}  // namespace corvane::testing
