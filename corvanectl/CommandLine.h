#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "corvanectl/ExitStatus.h"

namespace corvane::ctl {

/// How the server is started and waited for.
struct ServerOptions {
  std::optional<std::filesystem::path> server;
  /// Whether its standard error is shown.
  bool showLog = false;
  /// Seconds to wait for an answer, or for a followed request to finish.
  std::optional<double> timeout;
};

/// Lists the tools, or shows one of them.
struct ToolsCommand {
  std::optional<std::string> name;
  bool json = false;
};

/// Calls one tool.
struct CallCommand {
  std::string tool;
  /// A JSON text, "@" and a file's name, or "-" for standard input; nothing to send no arguments.
  std::optional<std::string> arguments = "{}";
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// Waits for a request to finish.
struct FollowCommand {
  std::string requestId;
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// Dispatches a run of existing tests.
struct RunCommand {
  std::string project;
  std::vector<std::string> tests;
  std::optional<std::string> suite;
  bool all = false;
  std::vector<std::pair<std::string, std::string>> params;
  std::optional<bool> build;
  std::optional<std::string> platform;
  std::optional<std::string> udid;
  bool follow = false;
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// What the user asked for.
struct Invocation {
  ServerOptions server;
  std::variant<ToolsCommand, CallCommand, RunCommand, FollowCommand> command;
};

/// What the command line itself is answered with: help, the version, or what is wrong with it.
struct CommandLineReply {
  std::string text;
  ExitStatus status = ExitStatus::success;
};

/// Reads the command line. Throws nothing but for want of memory.
[[nodiscard]] std::variant<Invocation, CommandLineReply> parseCommandLine(int argc,
                                                                          const char* const* argv);

}  // namespace corvane::ctl
