#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Dispatches the making of a reusable building block out of steps of a test.
class ExtractUdiTool final : public MCPTool {
 public:
  explicit ExtractUdiTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "extract_udi"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
