#include "corvanectl/CommandLine.h"

#include <CLI/CLI.hpp>
#include <sstream>
#include <vector>

#include "corvanectl/commands/Commands.h"

namespace corvane::ctl {

namespace {

constexpr const char* exitStatuses = R"(
Exit status:
  0   done; the followed request went well
  1   the tool or the server reported an error; the followed request failed
  2   the server could not be started, ended early or broke the protocol
  3   the followed request was blocked or cancelled, or ended in error or with a warning
  4   the time ran out
  5   no running app took the request up or went on with it
  64  the command line or the given arguments are wrong
  74  a file or the output could not be written)";

/// What is common to all commands, and the choice between them.
class CommandLine {
 public:
  CommandLine() {
    // That there is a command is checked after parsing, when an unknown one can be named.
    app.require_subcommand(0, 1);
    app.allow_extras();
    app.fallthrough();
    app.set_version_flag("--version", "corvanectl " CORVANE_VERSION);
    addServerOptions();
    std::string examples;
    for (const auto& command : commands) {
      add(*command);
      examples += command->about().examples;
    }
    app.footer("\nExamples:\n" + examples + exitStatuses);
  }

  std::variant<Invocation, CommandLineReply> parse(int argc, const char* const* argv) {
    try {
      app.parse(argc, argv);
      std::unique_ptr<Command> command = chosen();
      command->check();
      return Invocation{server, std::move(command)};
    } catch (const CLI::ParseError& error) {
      std::ostringstream text;
      const bool asked = app.exit(error, text, text) == 0;
      if (asked) return CommandLineReply{text.str(), ExitStatus::success};
      return CommandLineReply{"corvanectl: " + text.str(), ExitStatus::usage};
    }
  }

 private:
  void addServerOptions() {
    app.add_option(
           "--server", server.server,
           "The server program (default: corvane-mcp beside this program, else on the PATH)")
        ->type_name("PATH");
    app.add_flag("--log", server.showLog, "Show what the server writes to its standard error");
    app.add_option("--timeout", server.timeout,
                   "Give up after this time: on an answer (default: 30, and what a tool may wait), "
                   "on the whole of follow (default: none)")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.001, 1e8).description(""));
  }

  void add(Command& command) {
    const auto about = command.about();
    CLI::App* subcommand =
        app.add_subcommand(std::string(about.name), std::string(about.description));
    subcommand->footer("\nExamples:\n" + std::string(about.examples) +
                       "\n'corvanectl --help' tells the options of every command (--server, "
                       "--log, --timeout)\nand the exit statuses.");
    command.addOptions(*subcommand);
  }

  /// Beside an option group, which could say the same, CLI11 takes a project's name that comes last
  /// for one more test.
  std::unique_ptr<Command> chosen() {
    if (const auto unknown = app.remaining(); !unknown.empty()) {
      throw CLI::ExtrasError(app.get_name(), unknown);
    }
    for (auto& command : commands) {
      if (app.got_subcommand(std::string(command->about().name))) return std::move(command);
    }
    throw CLI::RequiredError("A subcommand");
  }

  std::vector<std::unique_ptr<Command>> commands = allCommands();
  ServerOptions server;
  CLI::App app{"Talk to the corvane-mcp server from a terminal.", "corvanectl"};
};

}  // namespace

std::variant<Invocation, CommandLineReply> parseCommandLine(int argc, const char* const* argv) {
  return CommandLine().parse(argc, argv);
}

}  // namespace corvane::ctl
