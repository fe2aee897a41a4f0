#pragma once

#include <string_view>
#include <utility>

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
