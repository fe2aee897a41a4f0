#include "corvanectl/commands/ReportCommand.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <vector>

#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/follow/EventLines.h"
#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/follow/RequestWatch.h"
#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples = R"(  corvanectl report REQUEST_ID --html report.html
  corvanectl report REQUEST_ID --junit results.xml --markdown summary.md
  corvanectl report REQUEST_ID --events
)";

/// The events of a request that need no watching.
std::vector<FollowEvent> eventsOf(const std::string& id, const RequestLook& look) {
  std::vector<FollowEvent> events{events::Began{id, false}};
  if (!look.isOver()) {
    events.emplace_back(events::LeftOff{ExitStatus::timedOut});
    return events;
  }
  const auto tests = look.result ? look.result->tests.value_or(std::vector<AgentRunResult::Test>())
                                 : std::vector<AgentRunResult::Test>();
  for (std::size_t i = 0; i < tests.size(); ++i) {
    events.emplace_back(events::TestFinished{{i, {}, tests[i].testName}, tests[i]});
  }
  events.emplace_back(events::Finished{look.status, look.json});
  return events;
}

}  // namespace

Command::About ReportCommand::about() const {
  return {"report", "Write reports on a request that has finished", examples};
}

void ReportCommand::addOptions(CLI::App& app) {
  addRequestId(app, requestId);
  addReports(app, reports);
  app.add_flag("--events", events,
               "Print what is known of it as JSON, a line for each event; the first one has the "
               "request's id");
  addPictures(app, pictures);
}

void ReportCommand::check() const {
  if (!reports.areGiven() && !events) {
    throw CLI::RequiredError("At least one of --junit, --html, --markdown and --events");
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
  const RequestLook look = RequestLook::from(result.firstText(), false);
  if (events) {
    const FollowTime now = std::chrono::steady_clock::now();
    EventLines lines(context.console, now);
    for (const FollowEvent& event : eventsOf(id, look)) lines.take(event, now);
  }
  if (!look.isOver()) {
    context.console.complain("the request has not finished, its status is " + look.status +
                             "; 'corvanectl follow " + id + "' waits for it");
    return ExitStatus::timedOut;
  }
  const Report report = makeReport(id, look.status, look.json);
  const bool written = writeReports(reports, pictures, report, session, context);
  return written ? exitStatusOf(look.status) : ExitStatus::inputOutput;
}

}  // namespace corvane::ctl
