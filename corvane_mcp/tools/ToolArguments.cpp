#include "corvane_mcp/tools/ToolArguments.h"

#include "corvane_mcp/protocol/JSONRPCError.h"

namespace corvane {

const JsonObject& requireArguments(const ToolCall& call, std::string_view toolName) {
  if (const auto* object = call.arguments ? call.arguments->object() : nullptr) return *object;
  throw JSONRPCError(JSONRPCError::invalidParams,
                     std::string(toolName).append(" requires arguments"));
}

ToolsCallResult invalidArguments(std::string_view reason) {
  return ToolsCallResult::failure(std::string("error:invalid_arguments\n\n").append(reason));
}

}  // namespace corvane
