#pragma once

#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/Invocation.h"
#include "corvanectl/commands/Session.h"

namespace corvane {

/// When following must end; never unless the user gave a time.
[[nodiscard]] Deadline followEnd(const ServerOptions& options);

/// Waits until a request has finished, showing its progress, and prints how it went. Gives up at
/// `end`. Throws what commands throw (Commands.h).
ExitStatus follow(const FollowCommand& command, Session& session, Deadline end,
                  CommandContext& context);

}  // namespace corvane
