#pragma once

#include <string_view>
#include <utility>
#include <variant>

#include "corvane_mcp/server/MCPTool.h"

namespace corvane::testing {

/// A tool that does what a test says.
inline MCPTool fakeTool(std::string_view name, decltype(MCPTool::action) action,
                        AnyCodable schema = AnyCodable::Object()) {
  return {name, "does as it is told", [schema = std::move(schema)] { return schema; },
          std::move(action)};
}

}  // namespace corvane::testing
