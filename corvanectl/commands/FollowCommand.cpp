#include "corvanectl/commands/FollowCommand.h"

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
  return follow({.id = requestId}, options, session, end, context);
}

}  // namespace corvane::ctl
