#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Shows how a request stands or went: as a whole, one test of it, or one step.
class ShowCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string request = "last";
  std::optional<std::int64_t> test;
  std::optional<std::int64_t> step;
  std::optional<std::filesystem::path> pictures;
  bool json = false;
};

}  // namespace corvane::ctl
