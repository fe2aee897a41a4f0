#include "corvanectl/commands/Commands.h"

#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/CancelCommand.h"
#include "corvanectl/commands/FollowCommand.h"
#include "corvanectl/commands/HealthCommand.h"
#include "corvanectl/commands/ReportCommand.h"
#include "corvanectl/commands/RunCommand.h"
#include "corvanectl/commands/ToolsCommand.h"

namespace corvane::ctl {

std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<ToolsCommand>());
  commands.push_back(std::make_unique<CallCommand>());
  commands.push_back(std::make_unique<RunCommand>());
  commands.push_back(std::make_unique<FollowCommand>());
  commands.push_back(std::make_unique<ReportCommand>());
  commands.push_back(std::make_unique<CancelCommand>());
  commands.push_back(std::make_unique<HealthCommand>());
  return commands;
}

}  // namespace corvane::ctl
