#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Dispatches the removal of a building block from the user's library.
class DeleteUdiTool final : public MCPTool {
 public:
  explicit DeleteUdiTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "delete_udi"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
