#pragma once

#include <optional>
#include <string>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Lists the tools, or shows one of them.
class ToolsCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::optional<std::string> name;
  bool json = false;
};

}  // namespace corvane::ctl
