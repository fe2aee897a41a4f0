#pragma once

#include <filesystem>
#include <optional>

#include "corvanectl/system/Interruption.h"
#include "corvanectl/trial/TrialHome.h"

namespace corvane::ctl {

/// The stand-in's bundle that was built or installed together with the program at `ownPath`. Throws
/// TrialFault when there is none.
[[nodiscard]] std::filesystem::path locateStandIn(const std::filesystem::path& ownPath);

/// Has the stand-in run in a home that was entered, and returns when it has published its
/// workspace: false when it ran before. It goes on when this program has ended. Throws TrialFault
/// and Interrupted.
bool startStandIn(const TrialHome& home, Interruption& interruption, Deadline deadline);

/// The same through another process of this program, so that the stand-in is no child of what this
/// one becomes. `server` is the one that was named, if any.
void startStandInApart(const TrialHome& home, const std::optional<std::filesystem::path>& server,
                       Interruption& interruption);

/// Has the stand-in of a home quit, and returns when it has. Throws TrialFault and Interrupted.
void stopStandIn(const TrialHome& home, Interruption& interruption, Deadline deadline);

}  // namespace corvane::ctl
