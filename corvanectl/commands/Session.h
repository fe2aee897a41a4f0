#pragma once

#include <optional>
#include <string_view>

#include "corvanectl/commands/CommandContext.h"
#include "corvanectl/protocol/McpClient.h"

namespace corvane::ctl {

/// A server that has been started and greeted; it ends with the object.
class Session {
 public:
  /// Throws ProtocolError, NoAnswer, Interrupted.
  explicit Session(CommandContext& context);

  [[nodiscard]] McpClient& client() { return mcpClient; }

  /// Calls a tool and gives its result as it came. `waiting` is how long the tool itself may wait
  /// before it answers. Throws what McpClient::callTool throws.
  [[nodiscard]] AnyCodable callTool(std::string_view tool,
                                    std::optional<AnyCodable::Object> arguments,
                                    Seconds waiting = Seconds(0));

  /// When a request that begins now must have been answered: after the time the user allows, else
  /// after the usual timeout on top of `waiting`.
  [[nodiscard]] Deadline answerDeadline(Seconds waiting = Seconds(0)) const;

 private:
  const ServerOptions& options;
  Seconds usualTimeout;
  ServerProcess server;
  McpClient mcpClient;
};

}  // namespace corvane::ctl
