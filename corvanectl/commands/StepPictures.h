#pragma once

#include <string>

#include "corvanectl/commands/FollowOptions.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/follow/RequestWatch.h"

namespace corvane::ctl {

/// Saves the pictures of a finished request's most telling step where the user asked for that;
/// else shows what a step that failed has left on the screen, on a terminal that can show it.
/// Throws FileError when a picture cannot be saved, and what commands throw.
void showStepPictures(const std::string& requestId, const RequestLook& look,
                      const FollowOptions& options, Session& session, CommandContext& context);

}  // namespace corvane::ctl
