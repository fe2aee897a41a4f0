#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Confirms that the server answers and shows where everything lives. Never fails.
class HealthTool final : public MCPTool {
 public:
  explicit HealthTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "health"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
