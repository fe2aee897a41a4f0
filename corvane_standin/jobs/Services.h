#pragma once

#include "corvane_standin/StandInSettings.h"
#include "corvane_standin/capture/Captures.h"
#include "corvane_standin/program/Clock.h"
#include "corvane_standin/workspace/WorkspaceStore.h"

namespace corvane::standin {

/// What jobs of every kind work with. All of it outlives them.
struct Services {
  const Clock& clock;
  const StandInSettings& settings;
  WorkspaceStore& workspace;
  /// The credits left, which jobs draw on.
  double& creditBalance;
  Captures& captures;
};

}  // namespace corvane::standin
