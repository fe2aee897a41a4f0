#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"
#include "corvane_mcp/workspace/PublishedContext.h"

namespace corvane {

/// Briefs the agent on the workspace: one project in full and the others in a line each. Never
/// writes anything and never launches the app.
class DescribeProjectTool final : public MCPTool {
 public:
  explicit DescribeProjectTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "describe_project"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  [[nodiscard]] std::vector<std::string> warnings(const PublishedContext& context) const;

  ToolServices services;
};

}  // namespace corvane
