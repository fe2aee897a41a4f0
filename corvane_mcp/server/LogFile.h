#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace corvane {

/// Appends `lines`, each ending in a line feed, to the log file. Before a line that finds the file
/// larger than 1 MiB the file becomes the one old generation ("mcp.log" becomes "mcp.1.log") and a
/// fresh one begins. The file is open only meanwhile, and locked against other servers' rotations.
/// Failures are ignored.
void appendToLogFile(const std::filesystem::path& logFile, const std::vector<std::string>& lines);

}  // namespace corvane
