#pragma once

#include "corvane_mcp/server/ToolRegistry.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Registers every tool of the server. `services` holds references that outlive the registry.
void registerTools(ToolRegistry& registry, const ToolServices& services);

}  // namespace corvane
