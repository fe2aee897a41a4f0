#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/FileError.h"

namespace corvane {

/// When a file was last changed, on the system clock.
using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// What tells one version of a file from the next.
struct FileStamp {
  FileTime modifiedAt = FileTime::min();
  std::uintmax_t size = 0;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// No file that either side writes comes near this size; a larger one is not read.
inline constexpr std::size_t largestFile = std::size_t{64} << 20;

/// The stamp of the file at `path`, links followed; nothing when there is none or it cannot be
/// seen.
[[nodiscard]] std::optional<FileStamp> readStamp(const std::filesystem::path& path);

/// The whole contents of a regular file. Never waits on a FIFO or device put in a file's place.
/// The text has room to grow by `spare` bytes. Throws FileError, also for other kinds of file and
/// for one larger than `limit` bytes.
[[nodiscard]] std::string readFile(const std::filesystem::path& path,
                                   std::size_t limit = largestFile, std::size_t spare = 0);

/// Writes the file whole or not at all: into a temporary file beside it, which is then moved into
/// place. Missing folders are created first. On failure the file is as it was, nothing is left
/// behind, and a FileError is thrown.
void writeFileWhole(const std::filesystem::path& path, std::string_view contents);

/// Makes a folder with all its parents exist. Whatever already exists there is left alone; a
/// failure is ignored, as the write that needs the folder reports its own.
void ensureDirectoryExists(const std::filesystem::path& directory);

/// Whether something exists at `path`, links followed.
[[nodiscard]] bool fileExists(const std::filesystem::path& path);

/// The entries of a folder whose names do not begin with a dot, sorted by name; empty when the
/// folder is missing or cannot be listed.
[[nodiscard]] std::vector<std::filesystem::path> listVisible(
    const std::filesystem::path& directory);

}  // namespace corvane
