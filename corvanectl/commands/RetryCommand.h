#pragma once

#include <string>

#include "corvanectl/commands/RunCommand.h"

namespace corvane::ctl {

/// Runs the tests of a finished request again.
class RetryCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string request = "last";
  bool failedOnly = false;
  /// What is added to the tests: how they run and how the run is shown.
  RunCommand run;
};

}  // namespace corvane::ctl
