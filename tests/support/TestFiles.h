#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane::testing {

/// Files as a test lays them out and looks at them, with plain means of its own.
namespace TestFiles {

/// Writes `text` into the file where it stands, cutting what was there; missing folders are made.
inline void write(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
}

/// Puts a file of these contents in the place of the old one in one move, as the app does.
inline void replace(const std::filesystem::path& file, std::string_view text) {
  std::filesystem::path beside = file;
  beside += ".new";
  write(beside, text);
  std::filesystem::rename(beside, file);
}

[[nodiscard]] inline std::string read(const std::filesystem::path& file) {
  std::ostringstream text;
  text << std::ifstream(file, std::ios::binary).rdbuf();
  return std::move(text).str();
}

/// The lines of a file; a last one that is not ended by a line feed counts too.
[[nodiscard]] inline std::vector<std::string> lines(const std::filesystem::path& file) {
  std::ifstream input(file, std::ios::binary);
  std::vector<std::string> all;
  for (std::string line; std::getline(input, line);) all.push_back(line);
  return all;
}

/// Sets when a file or folder was last changed, to the nanosecond.
inline void setModified(const std::filesystem::path& file, FileTime time) {
  const auto whole = std::chrono::floor<std::chrono::seconds>(time);
  timespec moment{};
  moment.tv_sec = whole.time_since_epoch().count();
  moment.tv_nsec = static_cast<long>((time - whole).count());
  const timespec both[] = {moment, moment};
  if (::utimensat(AT_FDCWD, file.c_str(), both, 0) != 0) {
    throw std::system_error(errno, std::generic_category(), file.string());
  }
}

/// The permissions of a file or folder, e.g. 0600; a link's own.
[[nodiscard]] inline mode_t mode(const std::filesystem::path& file) {
  struct stat status{};
  if (::lstat(file.c_str(), &status) != 0) {
    throw std::system_error(errno, std::generic_category(), file.string());
  }
  return status.st_mode & 07777;
}

inline void setMode(const std::filesystem::path& file, mode_t mode) {
  if (::chmod(file.c_str(), mode) != 0) {
    throw std::system_error(errno, std::generic_category(), file.string());
  }
}

}  // namespace TestFiles

}  // namespace corvane::testing
