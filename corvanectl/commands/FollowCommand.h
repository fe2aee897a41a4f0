#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "corvanectl/commands/Command.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// Which request to wait for, and what becomes of its result.
struct FollowOptions {
  std::string requestId;
  bool json = false;
  std::optional<std::filesystem::path> pictures;
};

/// When following must end; never unless the user gave a time.
[[nodiscard]] Deadline followEnd(const ServerOptions& options);

/// Waits until a request has finished, showing its progress, and prints how it went. Gives up at
/// `end`. Throws what commands throw.
ExitStatus follow(const FollowOptions& options, Session& session, Deadline end,
                  CommandContext& context);

/// Waits for a request to finish.
class FollowCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  FollowOptions options;
};

}  // namespace corvane::ctl
