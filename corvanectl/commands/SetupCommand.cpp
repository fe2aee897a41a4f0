#include "corvanectl/commands/SetupCommand.h"

#include <algorithm>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/NearestName.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/setup/ConfigurationFile.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

std::string listed(const std::vector<std::string>& names) {
  std::string list;
  for (const auto& name : names) list += (list.empty() ? "" : ", ") + name;
  return list;
}

const Client& clientNamed(const std::string& name) {
  const auto found = std::ranges::find(allClients(), name, &Client::name);
  if (found != allClients().end()) return *found;
  throw UsageError("there is no client '" + name + "'." + didYouMean(name, clientNames()) +
                   " Known are " + listed(clientNames()));
}

std::vector<const Client*> chosenClients(const std::vector<std::string>& names,
                                         const ClientFolders& folders) {
  std::vector<const Client*> chosen;
  chosen.reserve(names.size());
  for (const auto& name : names) chosen.push_back(&clientNamed(name));
  if (!names.empty()) return chosen;
  for (const Client& client : allClients()) {
    if (isThere(client, folders)) chosen.push_back(&client);
  }
  return chosen;
}

/// The program that clients are to start, as a whole path: an application with a window knows no
/// PATH of a shell.
fs::path serverCommand(const std::optional<fs::path>& given) {
  const fs::path server = locateServer(given, executablePath(), searchPath());
  if (!isProgram(server)) throw UsageError(displayPath(server) + " is no program");
  return lastingPath(server, searchPath());
}

}  // namespace

Command::About SetupCommand::about() const {
  return {"setup", "Tell MCP clients of the server: Claude Code, Cursor, VS Code and others",
          "  corvanectl setup\n"
          "  corvanectl setup cursor --print\n"
          "  corvanectl setup --remove\n"};
}

void SetupCommand::addOptions(CLI::App& app) {
  app.add_option("CLIENT", clients,
                 "The clients to tell: " + listed(clientNames()) + " (default: those found)")
      ->type_name("");
  app.add_option("--name", name, "What the clients call the server")
      ->type_name("NAME")
      ->capture_default_str()
      ->check(plainName());
  app.add_flag("--remove", remove, "Take the server out of the configurations again");
  app.add_flag("--print", printOnly, "Show what would be changed, and change nothing");
}

std::string SetupCommand::told(const ConfigurationChange& change) const {
  if (!change.isNone()) return "\n" + changedLines(change);
  return remove ? " does not name '" + name + "'\n" : " names '" + name + "' already\n";
}

ExitStatus SetupCommand::execute(CommandContext& context) const {
  const ClientFolders folders = ClientFolders::current();
  const auto chosen = chosenClients(clients, folders);
  if (chosen.empty()) {
    context.console.complain("no MCP client is found here. Name the one to set up: " +
                             listed(clientNames()));
    return ExitStatus::failure;
  }
  const std::string command = remove ? "" : serverCommand(context.options.server).string();
  auto status = ExitStatus::success;
  const auto fail = [&](const std::string& reason, ExitStatus failure) {
    context.console.complain(reason);
    status = failure;
  };
  bool hasChanged = false;
  for (const Client* client : chosen) {
    const fs::path path = configurationFile(*client, folders);
    const std::string shown = displayPath(path);
    try {
      const ConfigurationFile file(*client, path, name);
      const ConfigurationChange change = remove ? file.removal() : file.addition(command);
      context.console.print(std::string(client->title) + ": " + shown + told(change));
      if (printOnly || change.isNone()) continue;
      carryOut(change);
      hasChanged = true;
      if (change.backup) {
        context.console.print("The file as it was: " + displayPath(backupOf(path)) + "\n");
      }
    } catch (const ConfigurationFault& fault) {
      fail(shown + ", " + fault.what() + ". It is left as it is", ExitStatus::failure);
    } catch (const FileError& error) {
      fail(error.what(), ExitStatus::inputOutput);
    }
  }
  if (hasChanged) context.console.print("Clients that run read this when they start anew.\n");
  if (printOnly) context.console.print("Nothing has been changed.\n");
  return status;
}

}  // namespace corvane::ctl
