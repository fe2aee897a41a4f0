#pragma once

#include <optional>
#include <string>

#include "corvanectl/commands/FollowOptions.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/follow/Follower.h"

namespace corvane::ctl {

/// Waits until a request has finished, showing what happens, and prints how it went. Gives up at
/// `end`. However it is left before, the user is told how to go on, or the request is cancelled.
/// Throws what commands throw.
[[nodiscard]] ExitStatus follow(Follower::Request request, const FollowOptions& options,
                                Session& session, Deadline end, CommandContext& context);

}  // namespace corvane::ctl
