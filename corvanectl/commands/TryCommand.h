#pragma once

#include <filesystem>
#include <optional>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Offers a trial without Corvane.app: a home of its own in which the stand-in runs, and the server
/// for it.
class TryCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  void check() const override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::optional<std::filesystem::path> home;
  bool stop = false;
  bool reset = false;
  bool serve = false;
};

}  // namespace corvane::ctl
