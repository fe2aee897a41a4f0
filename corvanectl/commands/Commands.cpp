#include "corvanectl/commands/Commands.h"

#include "corvanectl/commands/CallCommand.h"
#include "corvanectl/commands/CancelCommand.h"
#include "corvanectl/commands/DoctorCommand.h"
#include "corvanectl/commands/FollowCommand.h"
#include "corvanectl/commands/HealthCommand.h"
#include "corvanectl/commands/NamesCommand.h"
#include "corvanectl/commands/ReportCommand.h"
#include "corvanectl/commands/RetryCommand.h"
#include "corvanectl/commands/RunCommand.h"
#include "corvanectl/commands/SetupCommand.h"
#include "corvanectl/commands/ShowCommand.h"
#include "corvanectl/commands/StatusCommands.h"
#include "corvanectl/commands/ToolsCommand.h"
#include "corvanectl/commands/TryCommand.h"
#include "corvanectl/commands/WorkspaceCommands.h"

namespace corvane::ctl {

std::vector<std::unique_ptr<Command>> allCommands() {
  std::vector<std::unique_ptr<Command>> commands;
  commands.push_back(std::make_unique<StatusCommand>());
  commands.push_back(std::make_unique<ListCommand>());
  commands.push_back(std::make_unique<ProjectsCommand>());
  commands.push_back(std::make_unique<TestsCommand>());
  commands.push_back(std::make_unique<RunCommand>());
  commands.push_back(std::make_unique<FollowCommand>());
  commands.push_back(std::make_unique<ShowCommand>());
  commands.push_back(std::make_unique<ReportCommand>());
  commands.push_back(std::make_unique<RetryCommand>());
  commands.push_back(std::make_unique<CancelCommand>());
  commands.push_back(std::make_unique<TryCommand>());
  commands.push_back(std::make_unique<SetupCommand>());
  commands.push_back(std::make_unique<DoctorCommand>());
  commands.push_back(std::make_unique<HealthCommand>());
  commands.push_back(std::make_unique<ToolsCommand>());
  commands.push_back(std::make_unique<CallCommand>());
  commands.push_back(std::make_unique<NamesCommand>());
  return commands;
}

}  // namespace corvane::ctl
