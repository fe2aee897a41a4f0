#pragma once

#include <string>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Cancels a request.
class CancelCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string requestId;
  bool json = false;
};

}  // namespace corvane::ctl
