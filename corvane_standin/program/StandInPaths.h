#pragma once

#include <filesystem>

#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane::standin {

/// The files that the stand-in keeps for itself, beside those it shares with the server.
class StandInPaths {
 public:
  explicit StandInPaths(const AgentPaths& shared)
      : folder(shared.applicationSupport() / "StandIn") {}

  [[nodiscard]] const std::filesystem::path& directory() const { return folder; }
  /// Locked by the one instance of this home and holds its process id.
  [[nodiscard]] std::filesystem::path lockFile() const { return folder / "instance.pid"; }
  [[nodiscard]] std::filesystem::path logFile() const { return folder / "standin.log"; }
  [[nodiscard]] std::filesystem::path settingsFile() const { return folder / "settings.json"; }
  [[nodiscard]] std::filesystem::path capturesDirectory() const { return folder / "Captures"; }
  /// Where a context file goes that could not be read, so that hand-made changes are not lost.
  [[nodiscard]] std::filesystem::path unreadableContextFile() const {
    return folder / "unreadable-context.json";
  }

 private:
  std::filesystem::path folder;
};

}  // namespace corvane::standin
