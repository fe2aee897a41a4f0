#pragma once

#include <optional>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvane_mcp/protocol/ToolsCallResult.h"
#include "corvane_mcp/server/ProgressReporter.h"
#include "corvane_mcp/server/Task.h"

namespace corvane {

/// One call of a tool.
struct ToolCall {
  /// As the client sent them, of any JSON kind; absent when it sent none.
  std::optional<AnyCodable> arguments;
  /// Present when the client asked for progress.
  std::optional<ProgressReporter> progress;
};

/// A capability offered to the agent. Tools hold no state of their own; everything durable is in
/// files. Any number of calls of one tool run at the same time.
class MCPTool {
 public:
  virtual ~MCPTool() = default;

  /// The wire name: unique, lower case with underscores.
  [[nodiscard]] virtual std::string_view name() const = 0;
  /// What the agent reads about the tool; sent verbatim.
  [[nodiscard]] virtual std::string_view description() const = 0;
  /// The JSON Schema of the arguments. It advises the client; the call checks for itself.
  [[nodiscard]] virtual AnyCodable inputSchema() const = 0;
  /// Performs one call, on a thread of the pool, where it may work on files. A failure that the
  /// agent can act on is a result with isError set. Throws JSONRPCError for a call that carries no
  /// arguments object and for a request file that cannot be written.
  [[nodiscard]] virtual Task<ToolsCallResult> call(ToolCall call) const = 0;
};

}  // namespace corvane
