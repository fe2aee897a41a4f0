#pragma once

#include <filesystem>
#include <optional>

#include "corvanectl/commands/CommandContext.h"
#include "corvanectl/report/ReportFiles.h"
#include "corvanectl/terminal/Console.h"

namespace CLI {
class App;
}

namespace corvane::ctl {

/// How a request is followed, and what becomes of its result.
struct FollowOptions {
  /// Whether the result is printed as JSON.
  bool json = false;
  /// Whether what happens is printed as JSON lines.
  bool events = false;
  /// Where the pictures of a step go.
  std::optional<std::filesystem::path> pictures;
  /// What is written about a request that has finished.
  ReportOptions reports;
  /// Seconds after which following ends when no app works on the request.
  double appTimeout = 60;
  /// Whether a request that is left is cancelled.
  bool cancelOnExit = false;
  ColorChoice color = ColorChoice::automatic;

  /// Adds the options but for --json, which stands in `app` already. Where following is itself an
  /// option of the command, those that mean nothing without it need it; `following` is its name.
  void addTo(CLI::App& app, const char* following = nullptr);

  /// Makes sure that what is written at the end can be written, before anything begins. Throws what
  /// checkReports throws.
  void checkOutputs() const;

  /// When following must end; never unless the user gave a time.
  [[nodiscard]] static Deadline end(const ServerOptions& options);
};

}  // namespace corvane::ctl
