#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "CorvaneCore/json/Codec.h"

namespace corvane {

/// The JSON Schema of the values that an argument of type Value takes, as far as the type says. An
/// argument of a type of its own specialises this, and Codec to read it.
template <class Value>
struct ArgumentType;

template <>
struct ArgumentType<std::string> {
  static JsonObject schema() { return {{"type", "string"}}; }
};
template <>
struct ArgumentType<bool> {
  static JsonObject schema() { return {{"type", "boolean"}}; }
};
template <>
struct ArgumentType<std::int64_t> {
  static JsonObject schema() { return {{"type", "integer"}}; }
};
template <>
struct ArgumentType<double> {
  static JsonObject schema() { return {{"type", "number"}}; }
};
template <>
struct ArgumentType<std::vector<std::string>> {
  static JsonObject schema() {
    return {{"type", "array"}, {"items", ArgumentType<std::string>::schema()}};
  }
};
template <>
struct ArgumentType<std::map<std::string, std::string>> {
  static JsonObject schema() {
    return {{"type", "object"}, {"additionalProperties", ArgumentType<std::string>::schema()}};
  }
};

/// One argument of a tool: the key, the member that takes it, and what the schema says of it beside
/// the type, which comes from the member.
template <class Arguments, class Value>
struct Argument {
  std::string_view key;
  std::optional<Value> Arguments::* member;
  std::string description;
  bool isRequired = false;
  std::vector<JsonObject::Member> constraints;

  [[nodiscard]] Argument required() && {
    isRequired = true;
    return std::move(*this);
  }
  /// Adds a schema keyword, e.g. with("minimum", 0).
  [[nodiscard]] Argument with(std::string keyword, AnyCodable value) && {
    constraints.push_back({std::move(keyword), std::move(value)});
    return std::move(*this);
  }
  /// The schema names the values of a vocabulary as the only ones; others are read as well.
  template <HasVocabulary E>
  [[nodiscard]] Argument oneOf() && {
    AnyCodable::Array words;
    for (const auto& row : Vocabulary<E>::rows) words.emplace_back(row.rawValue);
    return std::move(*this).with("enum", std::move(words));
  }

  [[nodiscard]] JsonObject schema() const {
    JsonObject schema = ArgumentType<Value>::schema();
    schema.set("description", description);
    for (const auto& constraint : constraints) schema.set(constraint.key, constraint.value);
    return schema;
  }
  /// Takes the argument out of `object`; a value of another type counts as absent, and `onMisfit`
  /// is told the key and why.
  template <class OnMisfit>
  void take(JsonObject& object, Arguments& arguments, const OnMisfit& onMisfit) const {
    AnyCodable* value = object.find(key);
    if (!value) return;
    arguments.*member =
        decodeIfFits<Value>(std::move(*value), [&](std::string_view why) { onMisfit(key, why); });
  }
};

/// Declares an argument. A tool lists its arguments once, in a struct whose members are all
/// std::optional:
///   static auto arguments() { return std::tuple(argument("name", &Arguments::name, "...")); }
/// The published schema and the reading both come from that list.
template <class Arguments, class Value>
[[nodiscard]] Argument<Arguments, Value> argument(std::string_view key,
                                                  std::optional<Value> Arguments::* member,
                                                  std::string description) {
  return {key, member, std::move(description), false, {}};
}

/// What the schema says of properties that are not listed.
enum class OtherProperties { refused, notMentioned };

/// The JSON Schema of a tool's declared arguments.
template <class Arguments>
[[nodiscard]] JsonObject schemaOf(OtherProperties others) {
  JsonObject properties;
  AnyCodable::Array required;
  const auto add = [&](const auto& argument) {
    properties.set(argument.key, argument.schema());
    if (argument.isRequired) required.emplace_back(argument.key);
  };
  std::apply([&](const auto&... argument) { (add(argument), ...); }, Arguments::arguments());
  JsonObject schema{{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema.set("required", std::move(required));
  if (others == OtherProperties::refused) schema.set("additionalProperties", false);
  return schema;
}

/// Takes the declared arguments out of `object`; those of another type than their own are absent,
/// and `onMisfit` is told their keys and why.
template <class Arguments, class OnMisfit = IgnoreMisfits>
[[nodiscard]] Arguments takeDeclared(JsonObject& object, const OnMisfit& onMisfit = {}) {
  Arguments taken;
  std::apply([&](const auto&... argument) { (argument.take(object, taken, onMisfit), ...); },
             Arguments::arguments());
  return taken;
}

}  // namespace corvane
