#pragma once

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Tells what the app is doing, once or again and again.
class StatusCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  bool watch = false;
  bool json = false;
};

/// Lists the requests that the server tells of.
class ListCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  bool json = false;
};

}  // namespace corvane::ctl
