#pragma once

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "CorvaneCore/authoring/ValidationResult.h"
#include "CorvaneCore/authoring/vocabulary/AgentTargetPlatform.h"

namespace corvane {

/// The platform that a payload is checked for: everything but exactly "android" is iOS.
[[nodiscard]] AgentTargetPlatform platformOf(const AgentTestSchema& payload);

/// Whether the payload says enough to find, build and start the app under test.
void checkPlatformFields(const AgentTestSchema& payload, AgentTargetPlatform platform,
                         ValidationResult& result);

}  // namespace corvane
