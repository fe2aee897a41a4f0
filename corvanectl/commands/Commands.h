#pragma once

#include <optional>
#include <stdexcept>
#include <string_view>

#include "corvanectl/CommandLine.h"
#include "corvanectl/ExitStatus.h"
#include "corvanectl/protocol/McpClient.h"
#include "corvanectl/protocol/ServerProcess.h"
#include "corvanectl/terminal/Console.h"
#include "corvanectl/terminal/PictureViewer.h"

namespace corvane::ctl {

/// What the user gave cannot be used.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a command works with. Everything it refers to outlives the command.
struct CommandContext {
  const ServerOptions& options;
  Console& console;
  PictureViewer& pictureViewer;
  ServerLog& log;
  Interruption& interruption;
  /// How long a request that does not wait for anything may take.
  Seconds usualTimeout{30};
};

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

/// Each carries one command out: starts a server, talks to it, prints, and says how it went. They
/// throw what Session and McpClient throw, UsageError for arguments that cannot be used, and
/// FileError or std::system_error when something cannot be written.
ExitStatus execute(const ToolsCommand& command, CommandContext& context);
ExitStatus execute(const CallCommand& command, CommandContext& context);
ExitStatus execute(const RunCommand& command, CommandContext& context);
ExitStatus execute(const FollowCommand& command, CommandContext& context);

/// When following must end; never unless the user gave a time.
[[nodiscard]] Deadline followEnd(const ServerOptions& options);

/// Waits until a request has finished, showing its progress, and prints how it went. Gives up at
/// `end`. Throws what commands throw.
ExitStatus follow(const FollowCommand& command, Session& session, Deadline end,
                  CommandContext& context);

/// The arguments object that `source` stands for: a JSON text, "@" and the name of a file that
/// holds one, or "-" for standard input. Throws UsageError when it cannot be read or is no JSON
/// object, Interrupted while it waits for standard input.
[[nodiscard]] AnyCodable::Object readToolArguments(std::string_view source,
                                                   Interruption& interruption);

/// The arguments with which run_test does what `command` asks for.
[[nodiscard]] AnyCodable::Object runArguments(const RunCommand& command);

}  // namespace corvane::ctl
