#pragma once

#include <string>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

/// Makes a building block of a range of steps, or replaces the steps of the one of that name, whose
/// id then stays. Throws RequestRefused and leaves the workspace as it was.
AgentRunResult::UdiInfo extractUdi(const AgentLibraryRequest& request, AgentContext& workspace);

/// Throws RequestRefused when there is no building block of that name.
void deleteUdi(const std::string& name, AgentContext& workspace);

/// Forgets what explorations charted, and nothing else. A project that nothing was charted of is
/// fine. Throws RequestRefused when there is no such project.
void resetWorldMap(const std::string& projectName, AgentContext& workspace);

}  // namespace corvane::standin
