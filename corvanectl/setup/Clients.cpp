#include "corvanectl/setup/Clients.h"

#include <array>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/paths/UserAccount.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;
using Format = ConfigurationFormat;
using Folders = ClientFolders;

ServerEntry plain(const std::string& command) {
  return {{"command", command}};
}
ServerEntry typed(const std::string& command) {
  return {{"type", "stdio"}, {"command", command}};
}
ServerEntry withArguments(const std::string& command) {
  return {{"command", command}, {"args", AnyCodable::Array()}};
}
/// Waiting for a result takes up to four minutes, for which the client does not wait by itself.
ServerEntry patient(const std::string& command) {
  return {{"command", command}, {"tool_timeout_sec", 300}};
}

constexpr std::array clients{
    Client{"claude-code", "Claude Code", &Folders::home, ".claude", ".claude.json",
           "CLAUDE_CONFIG_DIR", Format::json, "mcpServers", typed},
    Client{"claude-desktop", "Claude Desktop", &Folders::applications, "Claude",
           "Claude/claude_desktop_config.json", nullptr, Format::json, "mcpServers", plain},
    Client{"cursor", "Cursor", &Folders::home, ".cursor", ".cursor/mcp.json", nullptr, Format::json,
           "mcpServers", typed},
    Client{"vscode", "VS Code", &Folders::applications, "Code", "Code/User/mcp.json", nullptr,
           Format::jsonWithComments, "servers", typed},
    Client{"codex", "Codex", &Folders::home, ".codex", ".codex/config.toml", "CODEX_HOME",
           Format::toml, "mcp_servers", patient},
    Client{"gemini", "Gemini CLI", &Folders::home, ".gemini", ".gemini/settings.json", nullptr,
           Format::jsonWithComments, "mcpServers", plain},
    Client{"windsurf", "Windsurf", &Folders::home, ".codeium/windsurf",
           ".codeium/windsurf/mcp_config.json", nullptr, Format::json, "mcpServers", withArguments},
    Client{"zed", "Zed", &Folders::dotConfig, "zed", "zed/settings.json", nullptr,
           Format::jsonWithComments, "context_servers", withArguments},
};

/// The folder that a variable names in the place of the usual one; empty when there is none.
fs::path namedFolder(const Client& client) {
  return client.folderVariable ? absoluteFromEnvironment(client.folderVariable) : fs::path();
}

}  // namespace

ClientFolders ClientFolders::current() {
  ClientFolders folders;
  folders.home = absoluteFromEnvironment("HOME");
  if (folders.home.empty()) folders.home = accountHome();
#ifdef __APPLE__
  folders.dotConfig = folders.home / ".config";
  folders.applications = folders.home / "Library" / "Application Support";
#else
  folders.dotConfig = absoluteFromEnvironment("XDG_CONFIG_HOME");
  if (folders.dotConfig.empty()) folders.dotConfig = folders.home / ".config";
  folders.applications = folders.dotConfig;
#endif
  return folders;
}

std::span<const Client> allClients() {
  return clients;
}

std::vector<std::string> clientNames() {
  std::vector<std::string> names;
  names.reserve(clients.size());
  for (const Client& client : clients) names.emplace_back(client.name);
  return names;
}

fs::path configurationFile(const Client& client, const ClientFolders& folders) {
  const fs::path usual = folders.*client.base / client.file;
  const fs::path named = namedFolder(client);
  return named.empty() ? usual : named / usual.filename();
}

bool isThere(const Client& client, const ClientFolders& folders) {
  return fileExists(configurationFile(client, folders)) ||
         fileExists(folders.*client.base / client.folder) || fileExists(namedFolder(client));
}

}  // namespace corvane::ctl
