#include "corvane_mcp/server/MCPTool.h"

#include "corvane_mcp/protocol/JsonRpc.h"

namespace corvane {

ToolsCallResult MCPTool::perform(ToolCall call, DispatchOrder::Turn turn) const {
  if (const auto* plain = std::get_if<Plain>(&action)) return (*plain)(std::move(call));
  ToolsCallResult result = std::get<Dispatching>(action)(std::move(call), turn);
  // Not left to the end of its life, which may be that of the reply: a client can be slow to read.
  turn.giveUp();
  return result;
}

Task<ToolsCallResult> MCPTool::call(ToolCall call, DispatchOrder::Turn turn) const {
  if (!waits()) co_return perform(std::move(call), std::move(turn));
  co_return co_await std::get<Waiting>(action)(std::move(call));
}

ToolsListResult ToolRegistry::descriptors() const {
  ToolsListResult list;
  for (const auto& [name, tool] : tools) {
    list.tools.push_back({std::string(name), std::string(tool.description), tool.inputSchema()});
  }
  return list;
}

const MCPTool& ToolRegistry::find(std::string_view name) const {
  const auto found = tools.find(name);
  if (found == tools.end()) {
    throw JSONRPCError(JSONRPCError::invalidParams, std::string("Unknown tool: ").append(name));
  }
  return found->second;
}

}  // namespace corvane
