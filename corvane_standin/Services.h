#pragma once

#include "corvane_standin/Clock.h"
#include "corvane_standin/StandInSettings.h"
#include "corvane_standin/WorkspaceStore.h"

namespace corvane::standin {

/// What jobs of every kind work with. All of it outlives them.
struct Services {
  const Clock& clock;
  const StandInSettings& settings;
  WorkspaceStore& workspace;
  /// The credits left, which jobs draw on.
  double& creditBalance;
};

}  // namespace corvane::standin
