#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "CorvaneCore/json/Codec.h"
#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// One argument of a tool: the key, the member that takes it, and what the schema says of it. The
/// schema's type comes from the member's.
template <class Arguments, class Value>
struct ToolArgument {
  std::string_view key;
  std::optional<Value> Arguments::* member;
  std::string_view description;
  bool isRequired = false;
  std::vector<JsonObject::Member> constraints;

  [[nodiscard]] ToolArgument required() && {
    isRequired = true;
    return std::move(*this);
  }
  /// Adds a schema keyword, e.g. with("minimum", 0).
  [[nodiscard]] ToolArgument with(std::string keyword, AnyCodable value) && {
    constraints.push_back({std::move(keyword), std::move(value)});
    return std::move(*this);
  }
};

/// Declares an argument. A tool lists its arguments once, in a struct whose members are all
/// std::optional:
///   static auto arguments() { return std::tuple(argument("name", &Arguments::name, "...")); }
/// The published schema and the reading both come from that list.
template <class Arguments, class Value>
[[nodiscard]] ToolArgument<Arguments, Value> argument(std::string_view key,
                                                      std::optional<Value> Arguments::* member,
                                                      std::string_view description) {
  return {key, member, description, false, {}};
}

/// The arguments object of a call. Throws JSONRPCError "<tool> requires arguments" when the call
/// carries none.
[[nodiscard]] JsonObject& requireArguments(ToolCall& call, std::string_view toolName);

/// The answer to arguments that a tool cannot use: "error:invalid_arguments" and the reason.
[[nodiscard]] ToolsCallResult invalidArguments(std::string_view reason);

/// Takes the member `key` out of `object`; a value of another type counts as absent.
template <class Value>
[[nodiscard]] std::optional<Value> takeMember(JsonObject& object, std::string_view key) {
  AnyCodable* value = object.find(key);
  return value ? decodeIfFits<Value>(std::move(*value)) : std::nullopt;
}

/// What the schema says of properties that are not listed.
enum class OtherProperties { refused, notMentioned };

namespace tool_arguments_detail {

template <class Value>
JsonObject schemaType();
template <>
inline JsonObject schemaType<std::string>() {
  return {{"type", "string"}};
}
template <>
inline JsonObject schemaType<bool>() {
  return {{"type", "boolean"}};
}
template <>
inline JsonObject schemaType<std::int64_t>() {
  return {{"type", "integer"}};
}
template <>
inline JsonObject schemaType<double>() {
  return {{"type", "number"}};
}
template <>
inline JsonObject schemaType<std::vector<std::string>>() {
  return {{"type", "array"}, {"items", schemaType<std::string>()}};
}
template <>
inline JsonObject schemaType<std::map<std::string, std::string>>() {
  return {{"type", "object"}, {"additionalProperties", schemaType<std::string>()}};
}

template <class Arguments, class Value>
JsonObject propertySchema(const ToolArgument<Arguments, Value>& argument) {
  JsonObject schema = schemaType<Value>();
  schema.set("description", argument.description);
  for (const auto& constraint : argument.constraints) {
    schema.set(constraint.key, constraint.value);
  }
  return schema;
}

template <class Arguments>
Arguments takeDeclared(JsonObject& object) {
  Arguments taken;
  std::apply(
      [&](const auto&... argument) {
        ((taken.*argument.member = takeMember<
              typename std::remove_reference_t<decltype(taken.*argument.member)>::value_type>(
              object, argument.key)),
         ...);
      },
      Arguments::arguments());
  return taken;
}

}  // namespace tool_arguments_detail

/// The JSON Schema of a tool's declared arguments.
template <class Arguments>
[[nodiscard]] AnyCodable schemaOf(OtherProperties others) {
  JsonObject properties;
  AnyCodable::Array required;
  std::apply(
      [&](const auto&... argument) {
        (properties.set(argument.key, tool_arguments_detail::propertySchema(argument)), ...);
        ((argument.isRequired ? required.push_back(argument.key) : void()), ...);
      },
      Arguments::arguments());
  JsonObject schema{{"type", "object"}, {"properties", std::move(properties)}};
  if (!required.empty()) schema.set("required", std::move(required));
  if (others == OtherProperties::refused) schema.set("additionalProperties", false);
  return schema;
}

/// Takes the declared arguments out of a call. Throws JSONRPCError "<tool> requires arguments" when
/// the call carries no arguments object; a single argument of the wrong type counts as absent.
template <class Arguments>
[[nodiscard]] Arguments takeArguments(ToolCall& call, std::string_view toolName) {
  return tool_arguments_detail::takeDeclared<Arguments>(requireArguments(call, toolName));
}

/// The same for a tool that can be called without an arguments object: all are absent then.
template <class Arguments>
[[nodiscard]] Arguments takeArgumentsIfAny(ToolCall& call) {
  auto* object = call.arguments ? std::get_if<JsonObject>(&call.arguments->value()) : nullptr;
  return object ? tool_arguments_detail::takeDeclared<Arguments>(*object) : Arguments();
}

/// The arguments of a tool that takes none.
struct NoArguments {
  static auto arguments() { return std::tuple(); }
};

/// The `requestId` argument that tools take about a dispatched request.
namespace RequestIdArgument {

/// The pattern that the schemas publish.
inline constexpr const char* pattern =
    "^[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}$";

/// The refusal of a value that is no UUID.
[[nodiscard]] std::string invalidText(const std::optional<std::string>& given);

}  // namespace RequestIdArgument

}  // namespace corvane
