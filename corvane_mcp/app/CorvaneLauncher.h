#pragma once

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>

#include "corvane_mcp/app/AppProcess.h"
#include "corvane_mcp/server/Logger.h"

namespace corvane {

/// Finds, checks and starts Corvane.app. Each call looks afresh. No operation throws; all of them
/// may block for a while and may be called from any thread.
class CorvaneLauncher {
 public:
  /// Where to look.
  struct Places {
    /// The program's own path as it was started (its first command-line argument); may be empty.
    std::filesystem::path program;
    std::filesystem::path home;
    std::filesystem::path systemApplications = "/Applications";
    /// Whether a process whose command line contains a text runs.
    std::function<bool(std::string_view)> isRunning = AppProcess::isRunning;
  };

  CorvaneLauncher(Places places, Logger& logger) : places(std::move(places)), logger(logger) {}

  /// The app bundle: the one around this program, else the installed one, else the newest
  /// development build.
  [[nodiscard]] std::optional<std::filesystem::path> findCorvaneApp() const;
  /// The app bundle that contains this program.
  [[nodiscard]] std::optional<std::filesystem::path> bundledCorvaneApp() const;
  /// The most recently modified development build. Walks a folder tree that may be large.
  [[nodiscard]] std::optional<std::filesystem::path> newestDerivedDataBuild() const;
  [[nodiscard]] bool isRunning() const;
  /// Starts the app bundle; true when the start was handed to the system.
  [[nodiscard]] bool launch(const std::filesystem::path& app) const;
  /// Launches the app bundle unless the app runs; true when it runs or was launched. Of several
  /// calls at once, also of several servers, one launches it.
  [[nodiscard]] bool ensureRunning(const std::filesystem::path& app) const;

 private:
  Places places;
  Logger& logger;
  /// Held from looking whether the app runs until a launched one can be seen to.
  mutable std::mutex launching;
};

}  // namespace corvane
