#pragma once

#include <string>

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
