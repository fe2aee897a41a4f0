#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Tells what Corvane.app is doing now and which requests were answered last. Never fails.
class GetStatusTool final : public MCPTool {
 public:
  explicit GetStatusTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "get_status"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
