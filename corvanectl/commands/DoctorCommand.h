#pragma once

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Looks whether everything is in place, and says how to mend what is not.
class DoctorCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  bool json = false;
};

}  // namespace corvane::ctl
