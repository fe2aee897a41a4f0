#pragma once

#include "CorvaneCore/authoring/schema/InteractionDefinition.h"

namespace corvane {

/// The definitions of the steps that act on a control of the screen. They are authored by
/// exploration; a composed test holds them inside branches only.
[[nodiscard]] InteractionDefinition tapDefinition();
[[nodiscard]] InteractionDefinition inputDefinition();
[[nodiscard]] InteractionDefinition scrollDefinition();
[[nodiscard]] InteractionDefinition dragDefinition();

}  // namespace corvane
