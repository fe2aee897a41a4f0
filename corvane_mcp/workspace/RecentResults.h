#pragma once

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/paths/AgentPaths.h"
#include "corvane_mcp/server/Clock.h"

namespace corvane {

/// A line each about the result files that changed last, newest first: what get_status shows so
/// that a lost request id can be found again. At most five; files that change, vanish or make no
/// sense meanwhile are left out.
[[nodiscard]] AnyCodable::Array recentResults(const AgentPaths& paths, FileTime now);

}  // namespace corvane
