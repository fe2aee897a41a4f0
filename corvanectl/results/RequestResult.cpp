#include "corvanectl/results/RequestResult.h"

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/results/Outcome.h"
#include "corvanectl/results/ResultPhrases.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Step = AgentRunResult::Step;
using Test = AgentRunResult::Test;

std::string headline(const AgentRunResult& result) {
  std::string line = result.status;
  if (result.projectName) line += ": " + *result.projectName;
  if (result.platform) line += " on " + *result.platform;
  if (result.appUnderTest) line += " (" + describe(*result.appUnderTest) + ")";
  return oneLine(line) + "\n";
}

std::string blockage(const AgentRunResult::BlockedInfo& blocked) {
  std::string text = oneLine(blocked.code + ": " + blocked.message) + "\n";
  if (blocked.url) text += oneLine(*blocked.url) + "\n";
  return text;
}

std::string stepLines(const Step& step) {
  std::string text = "    step " + std::to_string(step.index) + " " + oneLine(statusWord(step)) +
                     ": " + oneLine(step.title) + "\n";
  if (step.failureReason) text += "      " + oneLine(*step.failureReason) + "\n";
  return text;
}

std::string authoredLine(const AgentRunResult::AuthoredTestInfo& test) {
  return "  authored  " + oneLine(test.testName) + "  (" + sizeOf(test) + ")\n";
}

std::string udiLine(const AgentRunResult::UdiInfo& udi) {
  return "  building block  " + oneLine(udi.name) + "  (" + sizeOf(udi) + ")\n";
}

std::string summarize(const AgentRunResult& result, TestLines tests) {
  std::string text = headline(result);
  if (result.message) text += oneLine(*result.message) + "\n";
  if (result.blocked) text += blockage(*result.blocked);
  for (const auto& issue : result.validationIssues.value_or(std::vector<ValidationIssue>())) {
    text += describe(issue) + "\n";
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
  if (result.summary) text += describe(*result.summary) + "\n";
  if (const auto credits = creditsOf(result); !credits.empty())
    text += "credits: " + credits + "\n";
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
    if (isNotable(step)) text += stepLines(step);
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
