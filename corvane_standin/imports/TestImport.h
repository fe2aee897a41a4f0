#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

/// Files the tests of a payload that has passed every check: into their project, which is created
/// if it does not exist, and their suite. A test whose name the project has already is updated in
/// place. Returns the names of the tests in payload order.
std::vector<std::string> importTests(const AgentTestSchema& payload, AgentContext& workspace);

}  // namespace corvane::standin
