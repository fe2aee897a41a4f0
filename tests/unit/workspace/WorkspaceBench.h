#pragma once

#include <filesystem>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Folder.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {

/// A bench for tools that answer with one text. It is 2026-01-31T12:00:00Z.
class WorkspaceBench : public ToolBench {
 public:
  /// What a tool answered.
  struct Answer {
    std::string text;
    bool isError = false;

    friend bool operator==(const Answer&, const Answer&) = default;
    friend void PrintTo(const Answer& answer, std::ostream* out) {
      *out << (answer.isError ? "error: " : "answer: ") << answer.text;
    }
  };

  /// Calls a fresh tool with these arguments, a JSON text, or without any. Throws what it throws.
  template <auto makeTool>
  [[nodiscard]] Answer call(std::optional<std::string_view> arguments = std::nullopt) const {
    const MCPTool tool = makeTool(services);
    ToolCall call;
    if (arguments) call.arguments = readJson(*arguments);
    const auto result = runTask(tool.call(std::move(call)));
    return {textOf(result), result.isError};
  }

  /// "code message" of the protocol error that a call ends in; another text when there is none.
  template <auto makeTool>
  [[nodiscard]] std::string protocolError(
      std::optional<std::string_view> arguments = std::nullopt) const {
    try {
      return "answered " + call<makeTool>(arguments).text;
    } catch (const JSONRPCError& error) {
      return std::to_string(error.code) + " " + error.message;
    }
  }

  /// The files waiting in the drop folder of requests.
  [[nodiscard]] std::vector<std::filesystem::path> requests() const {
    return listVisible(paths.agentRunRequestsDirectory());
  }
  /// The only one of them.
  [[nodiscard]] std::filesystem::path onlyRequest() const {
    const auto waiting = requests();
    if (waiting.size() != 1) throw std::runtime_error(std::to_string(waiting.size()) + " requests");
    return waiting.front();
  }
};

}  // namespace corvane::testing
