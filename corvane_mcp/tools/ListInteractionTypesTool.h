#pragma once

#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// Serves the prose of the authoring contract. Never fails.
class ListInteractionTypesTool final : public MCPTool {
 public:
  [[nodiscard]] std::string_view name() const override { return "list_interaction_types"; }
  [[nodiscard]] std::string_view description() const override;
  [[nodiscard]] AnyCodable inputSchema() const override;
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override;
};

}  // namespace corvane
