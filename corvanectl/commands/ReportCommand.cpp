#include "corvanectl/commands/ReportCommand.h"

#include <CLI/CLI.hpp>

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"
#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples = R"(  corvanectl report REQUEST_ID --html report.html
  corvanectl report REQUEST_ID --junit results.xml --markdown summary.md
)";

}  // namespace

Command::About ReportCommand::about() const {
  return {"report", "Write reports on a request that has finished", examples};
}

void ReportCommand::addOptions(CLI::App& app) {
  addRequestId(app, requestId);
  addReports(app, reports);
}

void ReportCommand::check() const {
  if (!reports.areGiven()) {
    throw CLI::RequiredError("At least one of --junit, --html and --markdown");
  }
}

ExitStatus ReportCommand::execute(CommandContext& context) const {
  checkReports(reports);
  Session session(context);
  const ToolResult result = ToolResult::from(
      session.callTool("get_result", AnyCodable::Object{{"requestId", requestId}}));
  if (result.isError) {
    ResultOutput(context.console, "get_result", {}, nullptr).print(result);
    return exitStatusOf(result);
  }
  const auto answer = AnswerTexts::readResultAnswer(result.firstText());
  if (!answer) throw ProtocolError("the answer of get_result does not begin with a status");
  if (!answer->isTerminal()) {
    context.console.complain("the request has not finished, its status is " + answer->status +
                             "; 'corvanectl follow " + requestId + "' waits for it");
    return ExitStatus::timedOut;
  }
  writeReports(reports, makeReport(requestId, answer->status, answer->result), session, context);
  return exitStatusOf(answer->status);
}

}  // namespace corvane::ctl
