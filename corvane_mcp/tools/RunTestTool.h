#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Dispatches a run of tests that exist in a project and returns its request id at once.
class RunTestTool final : public MCPTool {
 public:
  explicit RunTestTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "run_test"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  ToolServices services;
};

}  // namespace corvane
