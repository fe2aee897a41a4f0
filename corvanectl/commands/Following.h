#pragma once

#include <optional>
#include <string>

#include "corvanectl/commands/FollowOptions.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/follow/ServerWatch.h"

namespace corvane::ctl {

/// The request to follow.
struct FollowedRequest {
  std::string id;
  /// What it runs, when it is a run that was dispatched just now.
  std::optional<ServerWatch::Run> run = std::nullopt;
};

/// Waits until a request has finished, showing what happens, and prints how it went. Gives up at
/// `end`. However it is left before, the user is told how to go on, or the request is cancelled.
/// Throws what commands throw.
[[nodiscard]] ExitStatus follow(FollowedRequest request, const FollowOptions& options,
                                Session& session, Deadline end, CommandContext& context);

}  // namespace corvane::ctl
