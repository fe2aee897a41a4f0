#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/Record.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvanectl/protocol/ServerProcess.h"

namespace corvane::ctl {

/// The server answered a request with a JSON-RPC error.
class RpcError : public ProtocolError {
 public:
  RpcError(const std::string& method, std::int64_t code, const std::string& message)
      : ProtocolError("the server refused " + method + ": " + message + " (error " +
                      std::to_string(code) + ")") {}
};

/// The server did not answer in time.
class NoAnswer : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A tool's answer.
struct ToolResult {
  using Text = ContentBlock::Text;
  using Image = ContentBlock::Image;
  /// A kind of block that this program does not know.
  struct Other {
    std::string type;
  };
  using Block = std::variant<Text, Image, Other>;

  std::vector<Block> content;
  bool isError = false;

  /// Reads the result of a tools/call request. Throws ProtocolError when it has another form.
  [[nodiscard]] static ToolResult from(const AnyCodable& result);

  /// The text of the first block; empty when that is no text. It is this object's.
  [[nodiscard]] std::string_view firstText() const;
};

/// The client's side of the Model Context Protocol, one request at a time. What arrives while a
/// request waits (notifications, answers to requests that were given up) does not disturb it.
class McpClient {
 public:
  using OnProgress = std::function<void(std::string_view message)>;
  using Warn = std::function<void(std::string_view warning)>;

  /// `server` outlives the client. `warn` hears of the first line that is no message; all
  /// such lines are passed over.
  McpClient(ServerProcess& server, Warn warn) : server(server), warn(std::move(warn)) {}

  /// From now on calls `tick` about every `interval` while a request waits for its answer.
  void whileWaiting(Seconds interval, std::function<void()> tick);

  /// Greets the server; comes before any request. Throws as `request` does.
  void initialize(Deadline deadline);

  /// The result of a request. Throws RpcError when the server answers with an error, NoAnswer when
  /// `deadline` comes first, ProtocolError when the server fails, Interrupted.
  [[nodiscard]] AnyCodable request(std::string_view method, AnyCodable::Object params,
                                   Deadline deadline, const OnProgress& onProgress = {});

  /// The result of calling a tool, as the server gives it. With `onProgress`, asks for progress
  /// messages and hands them on. Throws as `request` does.
  [[nodiscard]] AnyCodable callTool(std::string_view tool,
                                    std::optional<AnyCodable::Object> arguments, Deadline deadline,
                                    const OnProgress& onProgress = {});

 private:
  [[nodiscard]] std::optional<AnyCodable> nextMessage(std::string_view method, Deadline deadline);
  [[nodiscard]] std::optional<std::string> nextLine(Deadline deadline);
  [[nodiscard]] std::optional<AnyCodable> parse(const std::string& line);

  ServerProcess& server;
  Warn warn;
  JsonReader reader;
  Seconds tickInterval{0};
  std::function<void()> tick;
  std::int64_t lastId = 0;
  bool warned = false;
};

}  // namespace corvane::ctl
