#include "corvane_standin/runs/RunSummary.h"

#include <algorithm>
#include <cmath>

namespace corvane::standin {

namespace {

using Tests = std::vector<AgentRunResult::Test>;

auto hasStatus(std::string_view status) {
  return [status](const auto& each) { return each.status == status; };
}

std::string remarkOn(const AgentRunResult::Test& test, const TestOutcome& outcome) {
  if (test.status == "failed") return " '" + test.testName + "' failed.";
  if (test.status == "warning") return " '" + test.testName + "' ended with a warning.";
  const auto healed = std::find_if(test.steps.begin(), test.steps.end(), hasStatus("healed"));
  if (healed == test.steps.end()) return {};
  return " '" + test.testName + "' passed only after Corvane adapted at step index " +
         std::to_string(healed->index) + ": " +
         outcome.failureReason.value_or("the screen was not the one expected.");
}

}  // namespace

RunStatus overallStatus(const Tests& tests) {
  for (const auto status : {RunStatus::failed, RunStatus::warning}) {
    if (std::any_of(tests.begin(), tests.end(), hasStatus(rawValue(status)))) return status;
  }
  return RunStatus::passed;
}

std::string overallMessage(const RunPlan& plan, const Tests& tests) {
  const auto summary = summaryOf(tests);
  std::string message = std::to_string(summary.testsPassed) + " of " +
                        std::to_string(summary.tests) +
                        (summary.tests == 1 ? " test passed." : " tests passed.");
  for (std::size_t i = 0; i < tests.size(); ++i) {
    message += remarkOn(tests[i], plan.tests[i].outcome);
  }
  return message;
}

AgentRunResult::Summary summaryOf(const Tests& tests) {
  AgentRunResult::Summary summary;
  summary.tests = static_cast<std::int64_t>(tests.size());
  summary.testsPassed = std::count_if(tests.begin(), tests.end(), hasStatus("passed"));
  for (const auto& test : tests) summary.durationSeconds += test.durationSeconds;
  summary.durationSeconds = std::round(summary.durationSeconds * 1000) / 1000;
  return summary;
}

}  // namespace corvane::standin
