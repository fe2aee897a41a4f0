#pragma once

#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/Invocation.h"
#include "corvanectl/commands/Session.h"

namespace corvane {

/// Each carries one command out: starts a server, talks to it, prints, and says how it went. They
/// throw what Session and McpClient throw, UsageError for arguments that cannot be used, and
/// FileError or std::system_error when something cannot be written.
ExitStatus execute(const ToolsCommand& command, CommandContext& context);
ExitStatus execute(const CallCommand& command, CommandContext& context);
ExitStatus execute(const RunCommand& command, CommandContext& context);
ExitStatus execute(const FollowCommand& command, CommandContext& context);

}  // namespace corvane
