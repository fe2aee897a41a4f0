#pragma once

#include "CorvaneCore/authoring/schema/InteractionDefinition.h"

namespace corvane {

/// The definitions of the steps that tests are composed of.
[[nodiscard]] InteractionDefinition visualAssertDefinition();
[[nodiscard]] InteractionDefinition builtInDefinition();
[[nodiscard]] InteractionDefinition delayDefinition();
[[nodiscard]] InteractionDefinition waitToLoadDefinition();
[[nodiscard]] InteractionDefinition runTestDefinition();
[[nodiscard]] InteractionDefinition userDefinedDefinition();
[[nodiscard]] InteractionDefinition reuseStepsDefinition();

}  // namespace corvane
