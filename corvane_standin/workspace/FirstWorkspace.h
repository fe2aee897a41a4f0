#pragma once

#include <map>
#include <string>

#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/runs/TestOutcome.h"

namespace corvane::standin {

/// The workspace that a home without one begins with. Not dated yet.
[[nodiscard]] AgentContext firstWorkspace();

/// How the tests of that workspace turn out unless settings say otherwise; tests not named pass.
[[nodiscard]] std::map<std::string, TestOutcome> firstOutcomes();

/// The app that carries `bundleId`, with the version it has in that workspace when it is one of its
/// apps.
[[nodiscard]] AgentRunResult::AppIdentity installedApp(const std::string& bundleId);

}  // namespace corvane::standin
