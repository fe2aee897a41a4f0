#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvane_mcp/server/LineReader.h"
#include "corvane_mcp/server/Logger.h"
#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/server/MessageWriter.h"
#include "corvane_mcp/server/ToolTasks.h"

namespace corvane {

/// Speaks the protocol: reads messages line by line, answers them, and runs tool calls as tasks
/// beside that. The thread that calls run() reads and answers everything but tool calls itself, so
/// a ping costs no hop between threads and no tool can delay it.
class MCPServer {
 public:
  /// What the server works with; all of it outlives the server.
  struct Parts {
    const ToolRegistry& registry;
    ServerInfo serverInfo;
    ClientIdentity& client;
    Logger& logger;
    MessageWriter& writer;
  };

  explicit MCPServer(Parts parts) : parts(std::move(parts)) {}

  /// Serves `input` until it ends and every tool call in flight has been answered.
  void run(LineReader& input);

 private:
  void handleBufferedLines(LineReader& input);
  void handleLine(std::string_view line);
  /// The result of any method but `tools/call`. Throws JSONRPCError.
  AnyCodable dispatch(const JSONRPCRequest& request);
  InitializeResult handleInitialize(const std::optional<AnyCodable>& params);
  void startToolsCall(JSONRPCRequest request);
  Task<void> respondToToolsCall(JSONRPCRequest request);
  Task<ToolsCallResult> handleToolsCall(std::optional<AnyCodable> params);

  /// How the log speaks of a request that failed.
  struct FailureTexts {
    /// Begins the line about a notification, which gets no reply.
    std::string unanswered;
    /// Begins the line about a failure that is not a protocol error.
    std::string unhandled;
  };
  [[nodiscard]] static FailureTexts toolsCallFailure();
  /// When a reply leaves: at once, or together with those of the lines read along with it.
  enum class Delivery { now, together };

  /// Answers a line that is no request.
  void replyToUnreadable(std::string_view description);
  void replyWithFailure(const std::optional<JSONRPCID>& id, const std::exception_ptr& failure,
                        const FailureTexts& texts, Delivery delivery);
  template <class Result>
  void send(const JSONRPCResponseWith<Result>& response, Delivery delivery);

  Parts parts;
  /// Used by the reading thread only.
  JsonReader reader;
  /// Last, so that it is destroyed first: that waits for the calls in flight, which use the rest.
  ToolTasks tasks;
};

}  // namespace corvane
