#pragma once

#include <filesystem>
#include <string_view>

#include "corvane_mcp/app/AppProcess.h"

namespace corvane::AppProcess {

/// The system's own programs that the seam to macOS works with; a test has others.
struct Helpers {
  std::filesystem::path pgrep = "/usr/bin/pgrep";
  std::filesystem::path open = "/usr/bin/open";
};

[[nodiscard]] bool isRunning(std::string_view text, const Helpers& helpers);
void start(const std::filesystem::path& bundle, const Helpers& helpers);

}  // namespace corvane::AppProcess
