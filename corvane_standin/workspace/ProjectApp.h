#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

/// The platform to work on, in the spelling that results carry: the one asked for, else the
/// project's. Throws RequestRefused for one that does not exist.
[[nodiscard]] std::string platformFor(const std::optional<std::string>& asked,
                                      const AgentContext::ProjectContext& project);

/// The project's app for a platform that platformFor gave. Throws RequestRefused, as blocked, when
/// it has none.
[[nodiscard]] AgentRunResult::AppIdentity appFor(const std::string& platform,
                                                 const AgentContext::ProjectContext& project);

}  // namespace corvane::standin
