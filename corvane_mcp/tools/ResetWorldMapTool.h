#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Dispatches the erasure of what explorations have charted of a project's app.
class ResetWorldMapTool final : public MCPTool {
 public:
  explicit ResetWorldMapTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "reset_world_map"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
