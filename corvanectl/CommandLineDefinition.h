#pragma once

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// The whole command line of the program: the options that all commands share and every command
/// with its own. What reads it fills in the members and the commands. Help, completion and the
/// manual page are made of it.
class CommandLineDefinition {
 public:
  CommandLineDefinition();
  CommandLineDefinition(const CommandLineDefinition&) = delete;
  CommandLineDefinition& operator=(const CommandLineDefinition&) = delete;

  /// The names of all commands, `help` among them.
  [[nodiscard]] std::vector<std::string> commandNames() const;
  /// Those that are not hidden.
  [[nodiscard]] std::vector<std::string> shownCommandNames() const;

  /// In the order in which help lists them.
  std::vector<std::unique_ptr<Command>> commands;
  ServerOptions server;
  /// The command that help is asked about.
  std::optional<std::string> helpTopic;
  CLI::App app;
  CLI::App* helpCommand = nullptr;

 private:
  void addServerOptions();
  void add(Command& command);
  void addHelp();
};

/// The exit statuses, a line each, indented by two blanks.
[[nodiscard]] std::string_view exitStatusLines();

}  // namespace corvane::ctl
