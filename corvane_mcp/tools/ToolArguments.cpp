#include "corvane_mcp/tools/ToolArguments.h"

#include "corvane_mcp/protocol/JsonRpc.h"

namespace corvane {

JsonObject& requireArguments(ToolCall& call, std::string_view toolName) {
  if (call.arguments) {
    if (auto* object = std::get_if<JsonObject>(&call.arguments->value())) return *object;
  }
  throw JSONRPCError(JSONRPCError::invalidParams,
                     std::string(toolName).append(" requires arguments"));
}

ToolsCallResult invalidArguments(std::string_view reason) {
  return ToolsCallResult::failure(std::string("error:invalid_arguments\n\n").append(reason));
}

std::string RequestIdArgument::invalidText(const std::optional<std::string>& given) {
  return "error:invalid_request_id\n\nrequestId must be the UUID returned by create_test/run_test. "
         "Got: '" +
         given.value_or("<missing>") + "'";
}

}  // namespace corvane
