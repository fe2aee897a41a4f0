#pragma once

#include <filesystem>
#include <optional>
#include <stdexcept>

#include "corvanectl/protocol/ServerProcess.h"
#include "corvanectl/terminal/Console.h"
#include "corvanectl/terminal/PictureViewer.h"

namespace corvane::ctl {

/// How the server is started and waited for.
struct ServerOptions {
  std::optional<std::filesystem::path> server;
  /// Whether its standard error is shown.
  bool showLog = false;
  /// Seconds to wait for an answer, or for a followed request to finish.
  std::optional<double> timeout;
};

/// What the user gave cannot be used.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What a command works with. Everything it refers to outlives the command.
struct CommandContext {
  const ServerOptions& options;
  Console& console;
  PictureViewer& pictureViewer;
  ServerLog& log;
  Interruption& interruption;
  /// How long a request that does not wait for anything may take.
  Seconds usualTimeout{30};
};

}  // namespace corvane::ctl
