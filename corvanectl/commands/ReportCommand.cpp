#include "corvanectl/commands/ReportCommand.h"

#include <CLI/CLI.hpp>

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/follow/FollowWords.h"
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
  addPictures(app, pictures);
}

void ReportCommand::check() const {
  if (!reports.areGiven()) {
    throw CLI::RequiredError("At least one of --junit, --html and --markdown");
  }
}

ExitStatus ReportCommand::execute(CommandContext& context) const {
  checkReports(reports);
  if (pictures) requirePictureFolder(*pictures);
  Session session(context);
  const std::string id = wholeRequestId(requestId, session);
  const ToolResult result =
      ToolResult::from(session.callTool("get_result", AnyCodable::Object{{"requestId", id}}));
  if (result.isError) {
    context.console.complain(FollowWords::refusal(result.firstText(), id));
    return ExitStatus::failure;
  }
  const auto answer = AnswerTexts::readResultAnswer(result.firstText());
  if (!answer) throw ProtocolError("the answer of get_result does not begin with a status");
  if (!answer->isTerminal()) {
    context.console.complain("the request has not finished, its status is " + answer->status +
                             "; 'corvanectl follow " + id + "' waits for it");
    return ExitStatus::timedOut;
  }
  const Report report = makeReport(id, answer->status, answer->result);
  const bool written = writeReports(reports, pictures, report, session, context);
  return written ? exitStatusOf(answer->status) : ExitStatus::inputOutput;
}

}  // namespace corvane::ctl
