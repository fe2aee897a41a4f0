#include "corvane_mcp/server/LogFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <thread>

#include "CorvaneCore/files/Files.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

/// A file of exactly 1 MiB is kept.
constexpr std::uint64_t rotationSize = (std::uint64_t{1} << 20) + 1;

/// The log file, open for appending and locked.
struct OpenLog {
  FileDescriptor file;
  std::uint64_t size = 0;
};

/// Whether `file` is still what `path` names, and not a generation that was rotated away.
bool stillNamed(const fs::path& path, const struct stat& file) {
  struct stat named{};
  return ::stat(path.c_str(), &named) == 0 && named.st_ino == file.st_ino &&
         named.st_dev == file.st_dev;
}

/// Waits a little for another server that is writing, but never for one that is stuck.
void lockBriefly(int file) {
  constexpr int attempts = 100;
  for (int i = 0; i < attempts && ::flock(file, LOCK_EX | LOCK_NB) != 0; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

std::optional<OpenLog> openLog(const fs::path& path) {
  constexpr int attempts = 10;
  for (int i = 0; i < attempts; ++i) {
    OpenLog log;
    log.file = FileDescriptor(
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666));
    if (!log.file.isOpen()) return std::nullopt;
    lockBriefly(log.file.get());
    struct stat status{};
    if (::fstat(log.file.get(), &status) != 0) return std::nullopt;
    if (!stillNamed(path, status)) continue;
    log.size = static_cast<std::uint64_t>(status.st_size);
    return log;
  }
  return std::nullopt;
}

void rotate(const fs::path& path) {
  fs::path old = path;
  old.replace_extension("1.log");
  ::remove(old.c_str());
  ::rename(path.c_str(), old.c_str());
}

void writeWhole(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace

void appendToLogFile(const fs::path& logFile, const std::vector<std::string>& lines) {
  auto next = lines.begin();
  bool rotated = false;
  while (next != lines.end()) {
    auto log = openLog(logFile);
    if (!log) return;
    if (log->size >= rotationSize && !rotated) {
      rotate(logFile);
      // A file that cannot be moved away is appended to as it is.
      rotated = true;
      continue;
    }
    std::string batch;
    const bool unmovable = log->size >= rotationSize;
    while (next != lines.end() && (unmovable || log->size + batch.size() < rotationSize)) {
      batch += *next++;
    }
    writeWhole(log->file.get(), batch);
    rotated = false;
  }
}

}  // namespace corvane
