#pragma once

#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// Withdraws a request that Corvane.app has not taken yet, or asks the app to abort it.
class CancelRunTool final : public MCPTool {
 public:
  explicit CancelRunTool(const ToolServices& services) : services(services) {}

  [[nodiscard]] std::string_view name() const override { return "cancel_run"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;

 private:
  [[nodiscard]] bool removeWaitingRequest(const std::string& requestId) const;
  void writeCancelledResult(const std::string& requestId) const;
  void dropCancelMarker(const std::string& requestId) const;

  ToolServices services;
};

}  // namespace corvane
