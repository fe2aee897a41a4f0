#pragma once

#include "CorvaneCore/authoring/schema/InteractionDefinition.h"

namespace corvane {

/// The definition of each step type, without the conditional branch.
[[nodiscard]] InteractionDefinition definitionOf(InteractionType type);

/// The schema of a step in a conditional branch: of any type that may stand there, with the
/// parameters of all of them.
[[nodiscard]] JsonObject branchChildSchema();

}  // namespace corvane
