#include "corvane_mcp/tools/ToolArguments.h"

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/protocol/JsonRpc.h"

namespace corvane {

std::optional<JsonObject> argumentsObject(const ToolCall& call) {
  if (!call.arguments) return std::nullopt;
  AnyCodable arguments = readJson(*call.arguments);
  auto* object = std::get_if<JsonObject>(&arguments.value());
  return object ? std::optional(std::move(*object)) : std::nullopt;
}

void failForWantOfArguments(std::string_view toolName) {
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
