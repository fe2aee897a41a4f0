#pragma once

#include <string>

#include "corvanectl/commands/Command.h"
#include "corvanectl/commands/FollowOptions.h"

namespace corvane::ctl {

/// Waits for a request to finish.
class FollowCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string requestId;
  FollowOptions options;
};

}  // namespace corvane::ctl
