#pragma once

#include <memory>
#include <string>
#include <variant>

#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// What the user asked for.
struct Invocation {
  ServerOptions server;
  std::unique_ptr<Command> command;
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
