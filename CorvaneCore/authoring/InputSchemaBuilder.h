#pragma once

#include <string>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/Record.h"

namespace corvane {

/// What an author gets to know about one step type.
struct IndividualInteractionDescriptor {
  /// An InteractionType.
  std::string name;
  /// The type's authoring guidance.
  std::string hint;
  /// The JSON Schema of a step of this type.
  JsonObject paramsSchema;

  static constexpr auto fields() {
    using R = IndividualInteractionDescriptor;
    return FieldList(field("name", &R::name), field("hint", &R::hint),
                     field("paramsSchema", &R::paramsSchema));
  }
};

}  // namespace corvane

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
