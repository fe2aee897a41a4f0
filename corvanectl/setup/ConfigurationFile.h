#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/setup/Clients.h"

namespace corvane::ctl {

/// What is to become of a client's configuration file, and of the backup beside it. A text that is
/// absent is a file that is not there.
struct ConfigurationChange {
  std::filesystem::path file;
  std::optional<std::string> before;
  std::optional<std::string> after;
  /// What the backup holds afterwards: the file as it was without the entry, where that is still to
  /// be had, else the file as it was before this change.
  std::optional<std::string> backup;

  [[nodiscard]] bool isNone() const { return before == after; }
};

/// A client's configuration file, with the entry of one server.
class ConfigurationFile {
 public:
  /// Reads the file, which need not be there. Throws FileError, and ConfigurationFault when it is
  /// not what its client could read.
  ConfigurationFile(const Client& client, std::filesystem::path file, std::string serverName);

  /// Puts an entry in for a server that `command` starts.
  [[nodiscard]] ConfigurationChange addition(const std::string& command) const;
  /// Takes the entry out. A file that has not been changed since the entry was put in becomes what
  /// it was before, to the byte.
  [[nodiscard]] ConfigurationChange removal() const;

 private:
  [[nodiscard]] std::unique_ptr<Configuration> read(std::string content) const;
  /// Whether the backup is the file as it was before the entry that is in it was put in.
  [[nodiscard]] bool backupIsWithoutEntry() const;

  const Client& client;
  std::filesystem::path file;
  EntryPlace place;
  std::optional<std::string> text;
  std::optional<std::string> backup;
  std::unique_ptr<Configuration> configuration;
};

/// The backup beside a configuration file.
[[nodiscard]] std::filesystem::path backupOf(std::filesystem::path file);

/// Writes the backup, and then the file whole or not at all: what a link leads to, with the
/// permissions that it has. Throws FileError.
void carryOut(const ConfigurationChange& change);

/// The lines that come and go, "- " before the one, "+ " before the other; safe to show.
[[nodiscard]] std::string changedLines(const ConfigurationChange& change);

}  // namespace corvane::ctl
