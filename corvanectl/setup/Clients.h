#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvanectl/setup/Configuration.h"

namespace corvane::ctl {

/// The folders that clients keep their configurations in.
struct ClientFolders {
  std::filesystem::path home;
  /// ~/.config; on Linux the folder that XDG_CONFIG_HOME names, if it names one.
  std::filesystem::path dotConfig;
  /// Where applications with windows keep them: the same on Linux, ~/Library/Application Support on
  /// macOS.
  std::filesystem::path applications;

  /// Those of this user, by the variables that clients go by. Throws std::runtime_error when the
  /// user has no home.
  [[nodiscard]] static ClientFolders current();
};

/// A program that starts MCP servers, and how it is told of one.
struct Client {
  /// As it is typed.
  std::string_view name;
  std::string_view title;
  /// Where its files are, below one of the folders.
  std::filesystem::path ClientFolders::* base;
  /// There when the client has been used.
  std::string_view folder;
  std::string_view file;
  /// The environment variable that names the folder with the file, if it has one.
  const char* folderVariable;
  ConfigurationFormat format;
  /// The object of the servers in the file.
  std::string_view servers;
  /// What the file says of a server that this command starts.
  ServerEntry (*entry)(const std::string& command);
};

[[nodiscard]] std::span<const Client> allClients();
[[nodiscard]] std::vector<std::string> clientNames();

/// The client's configuration file, which need not be there.
[[nodiscard]] std::filesystem::path configurationFile(const Client& client,
                                                      const ClientFolders& folders);

/// Whether the client has left traces in these folders.
[[nodiscard]] bool isThere(const Client& client, const ClientFolders& folders);

}  // namespace corvane::ctl
