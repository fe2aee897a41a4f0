#pragma once

#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_mcp/app/CorvaneLauncher.h"
#include "corvane_mcp/server/ClientIdentity.h"
#include "corvane_mcp/server/Clock.h"
#include "corvane_mcp/server/Logger.h"

namespace corvane {

/// What tools work with. Everything outlives the tools and may be used from any thread.
struct ToolServices {
  const AgentPaths& paths;
  const CorvaneLauncher& launcher;
  const ClientIdentity& client;
  const Clock& clock;
  Logger& logger;
};

}  // namespace corvane
