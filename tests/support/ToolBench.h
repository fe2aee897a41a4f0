#pragma once

#include <asio/co_spawn.hpp>
#include <asio/io_context.hpp>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/server/MCPTool.h"
#include "corvane_mcp/tools/ToolServices.h"
#include "tests/support/FakeClock.h"
#include "tests/support/LogLines.h"
#include "tests/support/TemporaryApp.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"

namespace corvane::testing {

/// Runs a task to its end on this thread; what it throws comes out.
template <class Result>
Result runTask(Task<Result> task) {
  asio::io_context context;
  std::exception_ptr failure;
  if constexpr (std::is_void_v<Result>) {
    asio::co_spawn(context, std::move(task),
                   [&](const std::exception_ptr& thrown) { failure = thrown; });
    context.run();
    if (failure) std::rethrow_exception(failure);
  } else {
    Result result;
    asio::co_spawn(context, std::move(task),
                   [&](const std::exception_ptr& thrown, Result returned) {
                     failure = thrown;
                     result = std::move(returned);
                   });
    context.run();
    if (failure) std::rethrow_exception(failure);
    return result;
  }
}

/// Everything that tools work with, in a private home and on a clock that the test plays. No app is
/// installed.
class ToolBench {
 public:
  /// Calls a tool as a client would; `arguments` is JSON, and may be left out.
  ToolsCallResult call(const MCPTool& tool, std::optional<std::string_view> arguments,
                       std::optional<ProgressReporter> progress = std::nullopt) {
    ToolCall call;
    if (arguments) call.arguments = *arguments;
    call.progress = std::move(progress);
    return runTask(tool.call(std::move(call)));
  }

  /// "LEVEL message" of every line logged so far.
  std::vector<std::string> logged() {
    const std::string mark = "INFO log read " + std::to_string(++marks);
    logger.info(std::string_view(mark).substr(5));
    std::vector<std::string> lines;
    waitUntil("the log is written", [&] {
      lines.clear();
      for (const auto& line : TestFiles::lines(paths.logFile())) {
        lines.push_back(levelAndMessage(line).value_or("not a line of a log: " + line));
      }
      return !lines.empty() && lines.back() == mark;
    });
    std::erase_if(lines, [](const auto& line) { return line.starts_with("INFO log read "); });
    return lines;
  }

  TemporaryHome home;
  AgentPaths paths = home.paths();
  Logger logger{paths.logFile()};
  CorvaneLauncher launcher{{.program = {},
                            .home = home.path(),
                            .systemApplications = home.path() / "SystemApplications",
                            .isRunning = onlyProcessesOf(home.path())},
                           logger};
  ClientIdentity client;
  FakeClock clock;
  ToolServices services{paths, launcher, client, clock, logger};

 private:
  int marks = 0;
};

/// The texts of a result's blocks; an image shows as "(image)".
inline std::vector<std::string> textsOf(const std::vector<ContentBlock>& blocks) {
  std::vector<std::string> texts;
  for (const auto& block : blocks) {
    const auto* text = std::get_if<ContentBlock::Text>(&block.choice);
    texts.push_back(text ? text->text : "(image)");
  }
  return texts;
}

/// The text of a result that has one block.
inline std::string textOf(const ToolsCallResult& result) {
  const auto texts = textsOf(result.content);
  return texts.size() == 1 ? texts.front() : "(" + std::to_string(texts.size()) + " blocks)";
}

}  // namespace corvane::testing
