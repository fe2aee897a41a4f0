#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/commands/Command.h"
#include "corvanectl/commands/FollowOptions.h"

namespace corvane::ctl {

/// Dispatches a run of existing tests.
class RunCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  void check() const override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  std::string project;
  std::vector<std::string> tests;
  std::optional<std::string> suite;
  bool all = false;
  std::vector<std::pair<std::string, std::string>> params;
  std::optional<bool> build;
  std::optional<std::string> platform;
  std::optional<std::string> udid;
  bool follow = false;
  FollowOptions options;
};

/// The arguments with which run_test does what `command` asks for.
[[nodiscard]] AnyCodable::Object runArguments(const RunCommand& command);

}  // namespace corvane::ctl
