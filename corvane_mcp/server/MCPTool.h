#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvane_mcp/server/Clock.h"
#include "corvane_mcp/server/DispatchOrder.h"
#include "corvane_mcp/server/MessageWriter.h"

namespace corvane {

/// The agent's self-reported name, which request files carry so that the app can show who asked.
/// One per process; may be used from any thread.
class ClientIdentity {
 public:
  /// Absent until a client has named itself.
  [[nodiscard]] std::optional<std::string> name() const {
    const std::scoped_lock lock(mutex);
    return current;
  }
  void setName(std::string name) {
    const std::scoped_lock lock(mutex);
    current = std::move(name);
  }

 private:
  mutable std::mutex mutex;
  std::optional<std::string> current;
};

/// One call of a tool.
struct ToolCall {
  /// As the client sent them, of any JSON kind; absent when it sent none.
  std::optional<AnyCodable> arguments;
  /// Present when the client asked for progress.
  std::optional<ProgressReporter> progress;
};

/// A capability offered to the agent. Tools hold no state of their own; everything durable is in
/// files. Any number of calls of one tool run at the same time.
struct MCPTool {
  /// Performs one call, on any thread, where it may work on files. A failure that the agent can
  /// act on is a result with isError set. Throws JSONRPCError for a call that carries no arguments
  /// object and for a request file that cannot be written.
  using Plain = std::function<ToolsCallResult(ToolCall)>;
  /// The same for a call that writes a request. Requests are written in the order in which the
  /// client sent the calls; the turn may be given up as soon as that has happened.
  using Dispatching = std::function<ToolsCallResult(ToolCall, DispatchOrder::Turn&)>;
  /// The same for a call that waits for something to happen: no thread waits with it.
  using Waiting = std::function<Task<ToolsCallResult>(ToolCall)>;

  /// The wire name: unique, lower case with underscores. A literal, as is the description: neither
  /// the tool nor its registry keeps a text of its own.
  std::string_view name;
  /// What the agent reads about the tool; sent verbatim.
  std::string_view description;
  /// Makes the JSON Schema of the arguments. It advises the client; the call checks for itself.
  std::function<AnyCodable()> inputSchema;
  std::variant<Plain, Dispatching, Waiting> action;

  [[nodiscard]] bool dispatches() const { return std::holds_alternative<Dispatching>(action); }
  [[nodiscard]] bool waits() const { return std::holds_alternative<Waiting>(action); }

  /// Performs one call, on this thread, of a tool that does not wait.
  [[nodiscard]] ToolsCallResult perform(ToolCall call, DispatchOrder::Turn turn) const;
  /// Performs one call of any tool. The tool outlives the task.
  [[nodiscard]] Task<ToolsCallResult> call(ToolCall call, DispatchOrder::Turn turn = {}) const;
};

/// The table in which tools are looked up by name. Tools are registered before the server runs;
/// after that the table does not change and may be read from any thread.
class ToolRegistry {
 public:
  /// Stores `tool` under its name, in the place of an earlier tool of that name.
  void add(MCPTool tool) { tools.insert_or_assign(tool.name, std::move(tool)); }
  /// Every tool as clients see it, sorted by name.
  [[nodiscard]] ToolsListResult descriptors() const;
  /// The tool of exactly this name. Throws JSONRPCError when there is none.
  [[nodiscard]] const MCPTool& find(std::string_view name) const;

 private:
  std::map<std::string_view, MCPTool> tools;
};

}  // namespace corvane
