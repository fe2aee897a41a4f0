#include "corvane_mcp/server/ToolRegistry.h"

#include "corvane_mcp/protocol/JSONRPCError.h"

namespace corvane {

void ToolRegistry::add(std::unique_ptr<MCPTool> tool) {
  std::string name(tool->name());
  tools.insert_or_assign(std::move(name), std::move(tool));
}

ToolsListResult ToolRegistry::descriptors() const {
  ToolsListResult list;
  for (const auto& [name, tool] : tools) {
    list.tools.push_back({name, std::string(tool->description()), tool->inputSchema()});
  }
  return list;
}

Task<ToolsCallResult> ToolRegistry::call(std::string name, ToolCall call) const {
  const auto found = tools.find(name);
  if (found == tools.end()) {
    throw JSONRPCError(JSONRPCError::invalidParams, "Unknown tool: " + name);
  }
  co_return co_await found->second->call(std::move(call));
}

}  // namespace corvane
