#include "corvanectl/report/Report.h"

#include <utility>

#include "CorvaneCore/json/AgentWire.h"
#include "corvanectl/results/ResultPhrases.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

std::vector<std::string> remarksOn(const AgentRunResult& result) {
  std::vector<std::string> remarks;
  if (result.message) remarks.push_back(*result.message);
  if (result.blocked) remarks.push_back(result.blocked->code + ": " + result.blocked->message);
  for (const auto& issue : result.validationIssues.value_or(std::vector<ValidationIssue>())) {
    remarks.push_back(describe(issue));
  }
  const auto addAuthored = [&](const AgentRunResult::AuthoredTestInfo& test) {
    remarks.push_back("authored '" + test.testName + "' (" + sizeOf(test) + ")");
  };
  if (result.authoredTests) {
    for (const auto& test : *result.authoredTests) addAuthored(test);
  } else if (result.authoredTest) {
    addAuthored(*result.authoredTest);
  }
  if (result.udi) {
    remarks.push_back("building block '" + result.udi->name + "' (" + sizeOf(*result.udi) + ")");
  }
  return remarks;
}

std::vector<Report::Fact> factsOf(const AgentRunResult& result) {
  std::vector<Report::Fact> facts;
  if (result.platform) facts.push_back({"Platform", *result.platform});
  if (result.appUnderTest) facts.push_back({"App under test", describe(*result.appUnderTest)});
  if (auto credits = creditsOf(result); !credits.empty()) {
    facts.push_back({"Credits", std::move(credits)});
  }
  facts.push_back({"Kind of request", result.source});
  return facts;
}

void fillIn(Report& report, AgentRunResult result) {
  report.title = result.projectName.value_or(result.source);
  report.updatedAt = result.updatedAt;
  if (result.summary) report.totals = describe(*result.summary);
  report.remarks = remarksOn(result);
  if (result.blocked) report.url = std::move(result.blocked->url);
  report.facts = factsOf(result);
  report.tests = std::move(result.tests).value_or(std::vector<AgentRunResult::Test>());
  report.trace = std::move(result.trace);
}

}  // namespace

Report makeReport(std::string_view requestId, std::string_view status, std::string_view json) {
  Report report;
  report.requestId = requestId;
  report.title = "Request";
  report.status = status;
  report.outcome = outcomeOf(status);
  try {
    fillIn(report, AgentWire::decode<AgentRunResult>(json));
  } catch (const DecodeError& error) {
    report.remarks = {"The result has another form than results have: " + std::string(error.what()),
                      std::string(json)};
  }
  return report;
}

std::string nameOf(const AgentRunResult::Step& step) {
  if (step.description.empty() || step.title == step.description) return oneLine(step.title);
  if (step.title.empty()) return oneLine(step.description);
  return oneLine(step.title + ": " + step.description);
}

std::string headlineOf(const AgentRunResult::Step& step) {
  return "step " + std::to_string(step.index) + " " + oneLine(statusWord(step)) + ": " +
         nameOf(step);
}

}  // namespace corvane::ctl
