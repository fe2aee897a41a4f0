#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_standin/Settings.h"

namespace corvane::standin {

/// What a scenario file says, settings.json being one.
struct Scenario {
  StandInSettings settings;
  /// The workspace in the file that the scenario names.
  std::optional<AgentContext> workspace;
  /// What cannot be used, in the order of the file: each with its line, what would be accepted and,
  /// for a word that looks misspelt, the nearest one. A setting or an outcome that cannot be used
  /// is left out, all the rest counts.
  std::vector<std::string> problems;
  /// Names that `workspace`, else the first workspace, does not have but nearly has.
  std::vector<std::string> hints;

  /// Reads `file`, which problems call by `name`.
  [[nodiscard]] static Scenario read(const std::filesystem::path& file, const std::string& name);
};

}  // namespace corvane::standin
