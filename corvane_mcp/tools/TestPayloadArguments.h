#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/authoring/AgentTestSchema.h"

/// How create_test's arguments, whose schema is InputSchemaBuilder's, become a test payload.
namespace corvane::TestPayloadArguments {

/// Why no payload can be made of `arguments`, if none can.
[[nodiscard]] std::optional<std::string> refusal(const JsonObject& arguments);

/// Moves what `arguments`, which are not refused, say of the test into `payload`. A value of
/// another type than its field's counts as absent, and nothing that was not said is filled in,
/// except for the test's index.
void moveInto(AgentTestSchema& payload, JsonObject& arguments);

}  // namespace corvane::TestPayloadArguments
