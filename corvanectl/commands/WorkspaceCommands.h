#pragma once

#include <optional>
#include <string>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Lists the projects of the workspace.
class ProjectsCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  bool json = false;
};

/// Lists the tests and suites of a project.
class TestsCommand final : public Command {
 public:
  [[nodiscard]] About about() const override;
  void addOptions(CLI::App& app) override;
  [[nodiscard]] ExitStatus execute(CommandContext& context) const override;

  /// Nothing for the open one.
  std::optional<std::string> project;
  bool json = false;
};

}  // namespace corvane::ctl
