#pragma once

#include <vector>

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/workspace/AgentContext.h"

namespace corvane::standin {

/// What the authoring rules cannot see in a payload alone: references to tests, step ranges and
/// building blocks that the workspace does not have. Every issue is an error. A test may refer to
/// the tests before it in the payload.
[[nodiscard]] std::vector<ValidationIssue> brokenReferences(const AgentTestSchema& payload,
                                                            const AgentContext& workspace);

}  // namespace corvane::standin
