#pragma once

#include <initializer_list>
#include <string_view>
#include <utility>

#include "CorvaneCore/authoring/InteractionType.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/Vocabulary.h"

/// The small pieces that the JSON Schema of the authoring contract is put together from.
namespace corvane::SchemaParts {

/// The schema of a value of one JSON type.
[[nodiscard]] inline JsonObject ofType(std::string_view type, std::string_view description) {
  return {{"type", type}, {"description", description}};
}

/// `schema` with one more keyword, e.g. with(ofType("number", "…"), "minimum", 0).
[[nodiscard]] inline JsonObject with(JsonObject schema, std::string_view keyword,
                                     AnyCodable value) {
  schema.set(keyword, std::move(value));
  return schema;
}

/// The schema of a string that is one of the vocabulary's values that `keep` accepts.
template <HasVocabulary E, class Keep = EveryValue>
[[nodiscard]] JsonObject wordOf(std::string_view description, Keep keep = {}) {
  AnyCodable::Array values;
  for (const auto& row : Vocabulary<E>::rows) {
    if (keep(row.value)) values.emplace_back(row.rawValue);
  }
  return with(ofType("string", description), "enum", std::move(values));
}

}  // namespace corvane::SchemaParts

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

/// The definition of each step type, without the conditional branch.
[[nodiscard]] InteractionDefinition definitionOf(InteractionType type);

/// The schema of a step in a conditional branch: of any type that may stand there, with the
/// parameters of all of them.
[[nodiscard]] JsonObject branchChildSchema();

}  // namespace corvane
