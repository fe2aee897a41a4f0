#pragma once

#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvane_mcp/server/DispatchOrder.h"
#include "corvane_mcp/server/Leadership.h"
#include "corvane_mcp/server/LineReader.h"
#include "corvane_mcp/server/Logger.h"
#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/server/MessageWriter.h"
#include "corvane_mcp/server/ToolTasks.h"

namespace corvane {

/// Speaks the protocol: reads messages line by line, answers them, and runs tool calls beside that.
/// The thread that reads answers everything but tool calls itself. With a tool call it hands on the
/// reading and runs the call, so neither costs a hop between threads and no tool can delay a ping.
/// A call that waits, or comes while both reading threads are busy, runs on a pool.
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
  /// A call of a tool that exists.
  struct Call {
    std::optional<JSONRPCID> id;
    const MCPTool& tool;
    ToolCall sent;
    ToolTasks::InFlight inFlight;
  };
  /// Who reads on after a line.
  enum class Reader { thisThread, another };

  /// Reads until the input ends or another thread reads on.
  void lead(LineReader& input, Leadership& readers);
  Reader handleLine(std::string_view line, Leadership& readers);
  /// The result of any method but `tools/call`. Throws JSONRPCError.
  AnyCodable dispatch(const JSONRPCRequest& request);
  InitializeResult handleInitialize(const std::optional<AnyCodable>& params);

  Reader handleToolsCall(JSONRPCRequest request, Leadership& readers);
  /// Throws JSONRPCError when there is no such tool or the params make no sense.
  Call readToolsCall(JSONRPCRequest request);
  Reader start(Call call, Leadership& readers);
  void performOnPool(Call call, DispatchOrder::Turn turn);
  void perform(Call& call, DispatchOrder::Turn turn);
  Task<void> performAsTask(Call call, DispatchOrder::Turn turn);
  void reply(const std::optional<JSONRPCID>& id, ToolsCallResult result);

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
  /// Used by the thread that reads.
  JsonReader reader;
  DispatchOrder dispatchOrder;
  /// Last, so that it is destroyed first: that waits for the calls in flight, which use the rest.
  ToolTasks tasks;
};

}  // namespace corvane
