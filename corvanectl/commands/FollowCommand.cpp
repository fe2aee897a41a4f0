#include "corvanectl/commands/FollowCommand.h"

#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Following.h"
#include "corvanectl/commands/Options.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view examples = R"(  corvanectl follow REQUEST_ID --pictures shots
  corvanectl follow REQUEST_ID --timeout 600 --json
)";

}  // namespace

Command::About FollowCommand::about() const {
  return {"follow", "Wait for a request and show how it went", examples};
}

void FollowCommand::addOptions(CLI::App& app) {
  addRequestId(app, requestId);
  addJson(app, options.json, "Print the final result as JSON");
  options.addTo(app);
}

ExitStatus FollowCommand::execute(CommandContext& context) const {
  options.checkOutputs();
  const Deadline end = FollowOptions::end(context.options);
  Session session(context);
  const std::string id = wholeRequestId(requestId, session);
  const bool isTold = id == requestId || options.events;
  if (!isTold && options.json) context.console.printError("requestId: " + id + "\n");
  if (!isTold && !options.json) context.console.print("Following " + id + "\n");
  removeOldReports(options.reports);
  return follow({.id = id}, options, session, end, context);
}

}  // namespace corvane::ctl
