// Writes the manual pages and the completions of the programs into a folder, from the definitions
// that the programs themselves read their command lines by.

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <iostream>

#include "CorvaneCore/files/Files.h"
#include "corvane_mcp/program/ProgramHelp.h"
#include "corvane_standin/program/Options.h"
#include "corvanectl/CommandLineDefinition.h"
#include "manual/ProgramManual.h"

namespace {

using namespace corvane;
using namespace corvane::manual;

ProgramManual clientManual() {
  const ctl::CommandLineDefinition definition;
  ProgramManual program{.name = definition.app.get_name(),
                        .description = definition.app.get_description(),
                        .options = optionsOf(definition.app),
                        .commands = {},
                        .sections = {}};
  for (const CLI::App* app : definition.app.get_subcommands(nullptr)) {
    if (app->get_group().empty()) continue;
    Command& command = program.commands.emplace_back();
    command.name = app->get_name();
    command.description = app->get_description();
    command.options = optionsOf(*app);
    // Every command has it, as the program has.
    std::erase_if(command.options,
                  [](const Option& option) { return option.names.front() == "-h"; });
  }
  for (const auto& command : definition.commands) {
    for (Command& each : program.commands) {
      if (each.name == command->about().name) each.examples = command->about().examples;
    }
  }
  program.sections = {{"EXIT STATUS", std::string(ctl::exitStatusLines())},
                      {"SEE ALSO", "corvane-mcp(1), corvane_standin(1)"}};
  return program;
}

ProgramManual serverManual() {
  ProgramManual program{
      .name = "corvane-mcp", .description = {}, .options = {}, .commands = {}, .sections = {}};
  for (const auto paragraph : ProgramHelp::description) {
    program.description.append(paragraph).append("\n\n");
  }
  program.description.append(ProgramHelp::advice).append("\n");
  for (const auto& option : ProgramHelp::options) {
    program.options.push_back({.names = {std::string(option.name)},
                               .value = {},
                               .description = std::string(option.description)});
  }
  program.sections = {{"SEE ALSO", "corvanectl(1)"}};
  return program;
}

ProgramManual standInManual() {
  CLI::App app(standin::programDescription);
  standin::Options options;
  options.addTo(app);
  return {.name = "corvane_standin",
          .description = app.get_description() +
                         ".\n\nThe program is Corvane in the bundle "
                         "Corvane.app, where the server finds and starts it.\n",
          .options = optionsOf(app),
          .commands = {},
          .sections = {{"SEE ALSO", "corvane-mcp(1), corvanectl(1)"}}};
}

void writeAll(const std::filesystem::path& folder, const Edition& edition) {
  const auto write = [&folder](const std::filesystem::path& name, const std::string& text) {
    writeFileWhole(folder / name, text, Access::byUmask);
  };
  const ProgramManual client = clientManual();
  for (const ProgramManual& program : {client, serverManual(), standInManual()}) {
    write(std::filesystem::path("man/man1") / (program.name + ".1"), manualPage(program, edition));
  }
  write("bash-completion/completions/corvanectl", bashCompletion(client));
  write("zsh/site-functions/_corvanectl", zshCompletion(client));
  write("fish/vendor_completions.d/corvanectl.fish", fishCompletion(client));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: corvane_manual FOLDER DATE\n";
    return 1;
  }
  try {
    writeAll(argv[1], {.version = CORVANE_VERSION, .date = argv[2]});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "corvane_manual: " << error.what() << "\n";
    return 1;
  }
}
