#pragma once

#include <functional>
#include <string>
#include <utility>

#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// A tool that does what a test says.
class FakeTool final : public MCPTool {
 public:
  using Action = std::function<Task<ToolsCallResult>(ToolCall)>;

  FakeTool(std::string name, Action action, AnyCodable schema = AnyCodable::Object())
      : toolName(std::move(name)), action(std::move(action)), schema(std::move(schema)) {}

  [[nodiscard]] std::string_view name() const override { return toolName; }
  [[nodiscard]] std::string_view description() const override { return "does as it is told"; }
  [[nodiscard]] AnyCodable inputSchema() const override { return schema; }
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call) const override {
    return action(std::move(call));
  }

 private:
  std::string toolName;
  Action action;
  AnyCodable schema;
};

}  // namespace corvane
