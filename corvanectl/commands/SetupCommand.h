#pragma once

#include <string>
#include <vector>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

struct ConfigurationChange;

/// Tells the MCP clients of this user of the server, in their configuration files.
class SetupCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  /// Without any all that are found.
  std::vector<std::string> clients;
  /// What the clients are to call the server.
  std::string name = "corvane";
  bool remove = false;
  bool printOnly = false;

 private:
  /// What becomes of a file, behind its name.
  [[nodiscard]] std::string told(const ConfigurationChange& change) const;
};

}  // namespace corvane::ctl
