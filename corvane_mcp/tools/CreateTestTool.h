#pragma once

#include "CorvaneCore/authoring/AgentTestSchema.h"
#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Validates a test composed by the agent, hands it to Corvane.app for import and returns its
/// request id at once.
class CreateTestTool final : public MCPTool {
 public:
  explicit CreateTestTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "create_test"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  /// Returns the path of the file written.
  [[nodiscard]] std::string writePayload(const AgentTestSchema& payload) const;
  /// Returns what the answer says of the app.
  [[nodiscard]] std::string launchApp() const;

  ToolServices services;
};

}  // namespace corvane
