#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <tuple>

#include "CorvaneCore/json/ArgumentTable.h"
#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// The arguments object of a call; nothing when it carries none.
[[nodiscard]] std::optional<JsonObject> argumentsObject(const ToolCall& call);

/// Throws JSONRPCError "<tool> requires arguments".
[[noreturn]] void failForWantOfArguments(std::string_view toolName);

/// The declared arguments of a call. Throws JSONRPCError "<tool> requires arguments" when the call
/// carries no arguments object; a single argument of the wrong type counts as absent.
template <class Arguments>
[[nodiscard]] Arguments takeArguments(const ToolCall& call, std::string_view toolName) {
  auto object = argumentsObject(call);
  if (!object) failForWantOfArguments(toolName);
  return takeDeclared<Arguments>(*object);
}

/// The same for a tool that can be called without an arguments object: all are absent then.
template <class Arguments>
[[nodiscard]] Arguments takeArgumentsIfAny(const ToolCall& call) {
  auto object = argumentsObject(call);
  return object ? takeDeclared<Arguments>(*object) : Arguments();
}

/// The arguments of a tool that takes none.
struct NoArguments {
  static auto arguments() { return std::tuple(); }
};

/// The answer to arguments that a tool cannot use: "error:invalid_arguments" and the reason.
[[nodiscard]] ToolsCallResult invalidArguments(std::string_view reason);

/// The `requestId` argument that tools take about a dispatched request.
namespace RequestIdArgument {

/// The pattern that the schemas publish.
inline constexpr const char* pattern =
    "^[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}$";

/// The refusal of a value that is no UUID.
[[nodiscard]] std::string invalidText(const std::optional<std::string>& given);

}  // namespace RequestIdArgument

}  // namespace corvane
