#include "corvanectl/commands/CancelCommand.h"

#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/Options.h"

namespace corvane::ctl {

Command::About CancelCommand::about() const {
  return {"cancel", "Cancel a request", "  corvanectl cancel REQUEST_ID\n"};
}

void CancelCommand::addOptions(CLI::App& app) {
  addRequestId(app, requestId);
  addJson(app, json, "Print the tool's result as JSON");
}

ExitStatus CancelCommand::execute(CommandContext& context) const {
  Session session(context);
  const std::string id = wholeRequestId(requestId, session);
  return callAndPrint({.tool = "cancel_run",
                       .arguments = AnyCodable::Object{{"requestId", id}},
                       .json = json,
                       .pictures = {}},
                      session, context);
}

}  // namespace corvane::ctl
