#include "corvane_mcp/tools/HealthTool.h"

#include "corvane_mcp/tools/Dispatch.h"

namespace corvane {

std::string_view HealthTool::description() const {
  return "Confirms the corvane-mcp server is alive. Returns the path to the bundled Corvane.app "
         "and "
         "the AgentImports drop folder.";
}

AnyCodable HealthTool::inputSchema() const {
  return JsonObject{
      {"type", "object"}, {"properties", JsonObject()}, {"additionalProperties", false}};
}

Task<ToolsCallResult> HealthTool::call(ToolCall) const {
  const AgentPaths& paths = services.paths;
  std::string text = "corvane-mcp is healthy.";
  text += "\n  Corvane.app:      " + Dispatch::describeApp(services.launcher.findCorvaneApp());
  text += "\n  AgentImports:     " + displayPath(paths.agentImportsDirectory());
  text += "\n  AgentRunRequests: " + displayPath(paths.agentRunRequestsDirectory());
  text += "\n  AgentResults:     " + displayPath(paths.agentResultsDirectory());
  text += "\n  MCP log file:     " + displayPath(paths.logFile());
  co_return ToolsCallResult::success(std::move(text));
}

}  // namespace corvane
