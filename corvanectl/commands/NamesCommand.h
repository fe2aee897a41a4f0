#pragma once

#include <optional>
#include <string>
#include <vector>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Lists names, one on a line, for a shell to complete words with.
class NamesCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string kind;
  /// Nothing or an empty name for the open one.
  std::optional<std::string> project;

 private:
  [[nodiscard]] std::vector<std::string> list(CommandContext& context) const;
};

}  // namespace corvane::ctl
