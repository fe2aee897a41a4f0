#pragma once

#include <initializer_list>
#include <string_view>

#include "CorvaneCore/authoring/vocabulary/InteractionType.h"
#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// The JSON Schema of one step while it is put together.
class InteractionDefinition {
 public:
  /// Whether authors have to send a description.
  enum class Description { required, optional };

  /// The text of a description that says nothing that the parameters do not say.
  static constexpr const char* optionalLabel =
      "Optional label. Corvane regenerates it from the parameters.";

  /// Holds what every step has, and no parameters. `descriptionText` says what this type's
  /// description is for.
  InteractionDefinition(InteractionType type, std::string_view descriptionText,
                        Description description);

  /// Adds a member of the step itself.
  [[nodiscard]] InteractionDefinition property(std::string_view key, JsonObject schema) &&;
  /// Opens the `parameters` object for these keys.
  [[nodiscard]] InteractionDefinition parameters(
      JsonObject properties, std::initializer_list<const char*> required = {}) &&;
  /// Adds the flags of steps that look for something on the screen.
  [[nodiscard]] InteractionDefinition commonFlags() &&;
  /// Adds the conditional branch, whose steps fit `childSchema`.
  [[nodiscard]] InteractionDefinition children(JsonObject childSchema) &&;

  [[nodiscard]] JsonObject schema() &&;

 private:
  AnyCodable::Array required{"type"};
  JsonObject properties;
};

}  // namespace corvane
