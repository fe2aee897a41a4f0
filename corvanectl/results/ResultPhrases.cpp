#include "corvanectl/results/ResultPhrases.h"

#include <array>
#include <cstdio>

#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

std::string number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%g", value);
  return text.data();
}

}  // namespace

std::string counted(std::int64_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

std::string describe(const AgentRunResult::AppIdentity& app) {
  std::string text = app.bundleId;
  if (app.version) text += " " + *app.version;
  if (app.build) text += " build " + *app.build;
  return oneLine(text);
}

std::string describe(const ValidationIssue& issue) {
  return oneLine(std::string(rawValue(issue.severity)) + " " + std::string(rawValue(issue.code)) +
                 " at " + issue.path + ": " + issue.message);
}

std::string describe(const AgentRunResult::Summary& summary) {
  return std::to_string(summary.testsPassed) + " of " + counted(summary.tests, "test") +
         " passed in " + displaySeconds(summary.durationSeconds);
}

std::string sizeOf(const AgentRunResult::AuthoredTestInfo& test) {
  std::string text = counted(test.stepCount, "step");
  if (test.completionPercent) text += ", " + number(*test.completionPercent) + "% complete";
  return text;
}

std::string sizeOf(const AgentRunResult::UdiInfo& udi) {
  std::string text = counted(udi.stepCount, "step");
  if (udi.parameterNames && !udi.parameterNames->empty()) {
    text += "; parameters";
    for (const auto& name : *udi.parameterNames) text += " " + oneLine(name);
  }
  return text;
}

std::string creditsOf(const AgentRunResult& result) {
  std::string text;
  if (result.creditsSpent) text += number(*result.creditsSpent) + " spent";
  if (result.creditsSpent && result.creditBalance) text += ", ";
  if (result.creditBalance) text += number(*result.creditBalance) + " left";
  return text;
}

}  // namespace corvane::ctl
