#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "corvanectl/commands/Command.h"
#include "corvanectl/report/ReportFiles.h"

namespace corvane::ctl {

/// Writes reports on a request that has finished.
class ReportCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  void check() const override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string requestId;
  ReportOptions reports;
  /// Whether what is known is printed as JSON lines.
  bool events = false;
  /// Where the pictures go that reports name.
  std::optional<std::filesystem::path> pictures;
};

}  // namespace corvane::ctl
