#include "corvanectl/results/RequestResult.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

std::string number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%g", value);
  return text.data();
}

std::string counted(std::int64_t count, std::string_view noun) {
  return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

bool isWorthTelling(const Step& step) {
  return step.failureReason || step.status == "failed" || isHealed(step);
}

std::string headline(const AgentRunResult& result) {
  std::string line = result.status;
  if (result.projectName) line += ": " + *result.projectName;
  if (result.platform) line += " on " + *result.platform;
  if (const auto& app = result.appUnderTest) {
    line += " (" + app->bundleId;
    if (app->version) line += " " + *app->version;
    if (app->build) line += " build " + *app->build;
    line += ")";
  }
  return oneLine(line) + "\n";
}

std::string blockage(const AgentRunResult::BlockedInfo& blocked) {
  std::string text = oneLine(blocked.code + ": " + blocked.message) + "\n";
  if (blocked.url) text += oneLine(*blocked.url) + "\n";
  return text;
}

std::string issueLine(const ValidationIssue& issue) {
  const std::string line = std::string(rawValue(issue.severity)) + " " +
                           std::string(rawValue(issue.code)) + " at " + issue.path + ": " +
                           issue.message;
  return oneLine(line) + "\n";
}

std::string stepLines(const Step& step) {
  const bool healed = isHealed(step) && step.status != "failed";
  std::string text = "    step " + std::to_string(step.index) + " " +
                     oneLine(healed ? "healed" : step.status) + ": " + oneLine(step.title) + "\n";
  if (step.failureReason) text += "      " + oneLine(*step.failureReason) + "\n";
  return text;
}

std::string authoredLine(const AgentRunResult::AuthoredTestInfo& test) {
  std::string text =
      "  authored  " + oneLine(test.testName) + "  (" + counted(test.stepCount, "step");
  if (test.completionPercent) text += ", " + number(*test.completionPercent) + "% complete";
  return text + ")\n";
}

std::string udiLine(const AgentRunResult::UdiInfo& udi) {
  std::string text =
      "  building block  " + oneLine(udi.name) + "  (" + counted(udi.stepCount, "step");
  if (udi.parameterNames && !udi.parameterNames->empty()) {
    text += "; parameters";
    for (const auto& name : *udi.parameterNames) text += " " + oneLine(name);
  }
  return text + ")\n";
}

std::string totals(const AgentRunResult::Summary& summary) {
  return std::to_string(summary.testsPassed) + " of " + counted(summary.tests, "test") +
         " passed in " + displaySeconds(summary.durationSeconds) + "\n";
}

std::string credits(const AgentRunResult& result) {
  std::string text = "credits:";
  if (result.creditsSpent) text += " " + number(*result.creditsSpent) + " spent";
  if (result.creditsSpent && result.creditBalance) text += ",";
  if (result.creditBalance) text += " " + number(*result.creditBalance) + " left";
  return text + "\n";
}

std::string summarize(const AgentRunResult& result, TestLines tests) {
  std::string text = headline(result);
  if (result.message) text += oneLine(*result.message) + "\n";
  if (result.blocked) text += blockage(*result.blocked);
  for (const auto& issue : result.validationIssues.value_or(std::vector<ValidationIssue>())) {
    text += issueLine(issue);
  }
  if (result.tests && tests == TestLines::shown) {
    for (const Test& test : *result.tests) text += summarizeTest(test);
  }
  if (result.authoredTests) {
    for (const auto& test : *result.authoredTests) text += authoredLine(test);
  } else if (result.authoredTest) {
    text += authoredLine(*result.authoredTest);
  }
  if (result.udi) text += udiLine(*result.udi);
  if (result.summary) text += totals(*result.summary);
  if (result.creditsSpent || result.creditBalance) text += credits(result);
  return text;
}

}  // namespace

bool isHealed(const Step& step) {
  return step.healedByAI || step.status == "healed";
}

std::string summarizeTest(const Test& test) {
  std::string text = "  " + oneLine(test.status) + "  " + oneLine(test.testName) + "  (" +
                     counted(static_cast<std::int64_t>(test.steps.size()), "step") + ", " +
                     displaySeconds(test.durationSeconds) + ")\n";
  for (const Step& step : test.steps) {
    if (isWorthTelling(step)) text += stepLines(step);
  }
  return text;
}

ExitStatus exitStatusOf(std::string_view status) {
  switch (fromRawValue<RunStatus>(status).value_or(RunStatus::error)) {
    case RunStatus::passed:
    case RunStatus::imported:
    case RunStatus::authored:
    case RunStatus::extracted:
    case RunStatus::deleted:
      return ExitStatus::success;
    case RunStatus::failed:
    case RunStatus::buildFailed:
    case RunStatus::importFailed:
      return ExitStatus::failure;
    default:
      return ExitStatus::otherOutcome;
  }
}

std::string summarizeResult(std::string_view json, std::string_view status, TestLines tests) {
  try {
    return summarize(AgentWire::decode<AgentRunResult>(json), tests);
  } catch (const DecodeError&) {
    return std::string(status).append("\n").append(json).append("\n");
  }
}

}  // namespace corvane::ctl
