#include "corvane_mcp/results/StepTraceChoice.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/ToolBench.h"

namespace corvane {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* noTrace =
    "(no step-trace for this run — the run may predate trace support or produced no capture "
    "session)";
constexpr const char* noStep =
    "(run has a capture session but no step indices; pass traceStepIndex to pick a step)";

class StepTraceChoiceTest : public testing::Test {
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
}  // namespace corvane
