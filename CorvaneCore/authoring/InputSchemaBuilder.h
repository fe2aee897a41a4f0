#pragma once

#include <vector>

#include "CorvaneCore/authoring/IndividualInteractionDescriptor.h"
#include "CorvaneCore/json/AnyCodable.h"

/// The machine-readable half of the authoring contract. Every enumeration in it comes from the
/// vocabularies that the payload and the validator use.
namespace corvane::InputSchemaBuilder {

/// The JSON Schema (draft 2020-12) of create_test's arguments.
[[nodiscard]] AnyCodable build();

/// The schema of its steps: of the types that a test is composed of.
[[nodiscard]] JsonObject stepsSchema();

/// One descriptor per step type, in the order of InteractionType.
[[nodiscard]] std::vector<IndividualInteractionDescriptor> interactionDescriptors();

}  // namespace corvane::InputSchemaBuilder
