#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "corvane_mcp/protocol/ToolsListResult.h"
#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// The table in which tools are looked up by name. Tools are registered before the server runs;
/// after that the table does not change and may be read from any thread.
class ToolRegistry {
 public:
  /// Stores `tool` under its name, in the place of an earlier tool of that name.
  void add(std::unique_ptr<MCPTool> tool);
  /// Every tool as clients see it, sorted by name.
  [[nodiscard]] ToolsListResult descriptors() const;
  /// Calls the tool of exactly this name. Throws JSONRPCError when there is none, and whatever the
  /// tool throws.
  [[nodiscard]] Task<ToolsCallResult> call(std::string name, ToolCall call) const;

 private:
  std::map<std::string, std::unique_ptr<MCPTool>, std::less<>> tools;
};

}  // namespace corvane
