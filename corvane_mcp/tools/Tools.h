#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

// The tools, in the order of their registration. The services that one is made with hold references
// that outlive it.

/// Confirms that the server answers and shows where everything lives. Never fails.
[[nodiscard]] MCPTool makeHealthTool(const ToolServices& services);

/// Serves the prose of the authoring contract. Never fails.
[[nodiscard]] MCPTool makeListInteractionTypesTool();

/// Validates a test composed by the agent, hands it to Corvane.app for import and returns its
/// request id at once.
[[nodiscard]] MCPTool makeCreateTestTool(const ToolServices& services);

/// Dispatches a run of tests that exist in a project and returns its request id at once.
[[nodiscard]] MCPTool makeRunTestTool(const ToolServices& services);

/// Reports the state of any dispatched request, waiting for it to finish when asked to.
[[nodiscard]] MCPTool makeGetResultTool(const ToolServices& services);

/// Withdraws a request that Corvane.app has not taken yet, or asks the app to abort it.
[[nodiscard]] MCPTool makeCancelRunTool(const ToolServices& services);

/// Briefs the agent on the workspace: one project in full and the others in a line each. Never
/// writes anything and never launches the app.
[[nodiscard]] MCPTool makeDescribeProjectTool(const ToolServices& services);

/// Dispatches an exploration of the live app, out of which Corvane.app authors tests, and returns
/// its request id at once.
[[nodiscard]] MCPTool makeExploreFlowTool(const ToolServices& services);

/// Dispatches the making of a reusable building block out of steps of a test.
[[nodiscard]] MCPTool makeExtractUdiTool(const ToolServices& services);

/// Dispatches the removal of a building block from the user's library.
[[nodiscard]] MCPTool makeDeleteUdiTool(const ToolServices& services);

/// Dispatches the erasure of what explorations have charted of a project's app.
[[nodiscard]] MCPTool makeResetWorldMapTool(const ToolServices& services);

/// Tells what Corvane.app is doing now and which requests were answered last. Never fails.
[[nodiscard]] MCPTool makeGetStatusTool(const ToolServices& services);

/// Registers every tool of the server.
void registerTools(ToolRegistry& registry, const ToolServices& services);

}  // namespace corvane
