#pragma once

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Asks the server how it and the app are.
class HealthCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  bool json = false;
};

}  // namespace corvane::ctl
