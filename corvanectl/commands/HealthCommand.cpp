#include "corvanectl/commands/HealthCommand.h"

#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/Options.h"

namespace corvane::ctl {

Command::About HealthCommand::about() const {
  return {"health", "Check that the server and Corvane.app are well", "  corvanectl health\n"};
}

void HealthCommand::addOptions(CLI::App& app) {
  addJson(app, json, "Print the tool's result as JSON");
}

ExitStatus HealthCommand::execute(CommandContext& context) const {
  return callAndPrint(
      {.tool = "health", .arguments = AnyCodable::Object(), .json = json, .pictures = {}}, context);
}

}  // namespace corvane::ctl
