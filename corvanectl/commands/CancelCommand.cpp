#include "corvanectl/commands/CancelCommand.h"

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
  return callAndPrint({.tool = "cancel_run",
                       .arguments = AnyCodable::Object{{"requestId", requestId}},
                       .json = json,
                       .pictures = {}},
                      context);
}

}  // namespace corvane::ctl
