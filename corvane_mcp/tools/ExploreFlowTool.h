#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Dispatches an exploration of the live app, out of which Corvane.app authors tests, and returns
/// its request id at once.
class ExploreFlowTool final : public MCPTool {
 public:
  explicit ExploreFlowTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "explore_flow"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
