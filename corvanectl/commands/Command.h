#pragma once

#include <string_view>

#include "corvanectl/ExitStatus.h"
#include "corvanectl/commands/CommandContext.h"

namespace CLI {
class App;
}

namespace corvane::ctl {

/// One command of the program: how the command line offers it, and what it does. Its members hold
/// what the user asked for, once the command line has been read.
class Command {
 public:
  /// What help says of a command.
  struct About {
    std::string_view name;
    std::string_view description;
    /// Whole lines, indented by two blanks.
    std::string_view examples;
  };

  virtual ~Command() = default;

  [[nodiscard]] virtual About about() const = 0;

  /// Adds the command's arguments and options to `app`, which fill in members of this object.
  virtual void addOptions(CLI::App& app) = 0;

  /// Checks, after reading, what options do not check one by one. Throws CLI::ParseError.
  virtual void check() const {}

  /// Carries the command out: starts a server, talks to it, prints, and says how it went. Throws
  /// what Session and McpClient throw, UsageError for arguments that cannot be used, and FileError
  /// or std::system_error when something cannot be written.
  [[nodiscard]] virtual ExitStatus execute(CommandContext& context) const = 0;
};

}  // namespace corvane::ctl
