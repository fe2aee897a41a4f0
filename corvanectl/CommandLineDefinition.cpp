#include "corvanectl/CommandLineDefinition.h"

#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/Options.h"

namespace corvane::ctl {

namespace {

/// Footers are laid out by hand; newer versions of CLI11 would fill their lines anew.
void keepFootersAsTheyAre(auto& formatter) {
  if constexpr (requires { formatter.enable_footer_formatting(false); }) {
    formatter.enable_footer_formatting(false);
  }
}

std::string_view firstLine(std::string_view text) {
  return text.substr(0, text.find('\n') + 1);
}

}  // namespace

std::string_view exitStatusLines() {
  return R"(  0   done; the followed request went well
  1   the tool or the server reported an error; the followed request failed
  2   the server could not be started, ended early or broke the protocol
  3   the followed request was blocked or cancelled, or ended in error or with a warning
  4   the time ran out
  5   no running app took the request up or went on with it
  64  the command line or the given arguments are wrong
  74  a file or the output could not be written
)";
}

CommandLineDefinition::CommandLineDefinition()
    : commands(allCommands()),
      app("Talk to the corvane-mcp server from a terminal.", "corvanectl") {
  // That there is a command is checked after parsing, when an unknown one can be named.
  app.require_subcommand(0, 1);
  app.allow_extras();
  app.fallthrough();
  app.set_version_flag("--version", "corvanectl " CORVANE_VERSION);
  keepFootersAsTheyAre(*app.get_formatter());
  addServerOptions();
  std::string examples;
  for (const auto& command : commands) {
    add(*command);
    examples += firstLine(command->about().examples);
  }
  addHelp();
  app.footer("\nExamples:\n" + examples + "\nExit status:\n" +
             std::string(exitStatusLines().substr(0, exitStatusLines().size() - 1)));
  takeValuesAsTheyAre(app);
}

void CommandLineDefinition::addServerOptions() {
  app.add_option("--server", server.server,
                 "The server program (default: corvane-mcp beside this program, else on the PATH)")
      ->type_name("PROGRAM");
  app.add_flag("--log", server.showLog, "Show what the server writes to its standard error");
  app.add_option("--timeout", server.timeout,
                 "Give up after this time: on an answer (default: 30, and what a tool may wait), "
                 "on the whole of follow (default: none)")
      ->type_name("SECONDS")
      ->check(secondsAbove0());
}

void CommandLineDefinition::add(Command& command) {
  const auto about = command.about();
  CLI::App* subcommand =
      app.add_subcommand(std::string(about.name), std::string(about.description));
  if (about.hidden) subcommand->group("");
  subcommand->footer("\nExamples:\n" + std::string(about.examples) +
                     "\n'corvanectl --help' tells the options of every command (--server, "
                     "--log, --timeout)\nand the exit statuses.");
  command.addOptions(*subcommand);
}

void CommandLineDefinition::addHelp() {
  helpCommand = app.add_subcommand("help", "Show what the program or one of its commands can do");
  helpCommand->add_option("COMMAND", helpTopic, "The command to tell of")->type_name("");
}

std::vector<std::string> CommandLineDefinition::commandNames() const {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) names.push_back(command->get_name());
  return names;
}

std::vector<std::string> CommandLineDefinition::shownCommandNames() const {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands(nullptr)) {
    if (!command->get_group().empty()) names.push_back(command->get_name());
  }
  return names;
}

}  // namespace corvane::ctl
