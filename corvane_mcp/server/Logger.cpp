#include "corvane_mcp/server/Logger.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 3> levelNames{"INFO", "WARN", "ERROR"};

/// Lines that wait for the file beyond this hold their callers back, so that memory stays bounded.
constexpr std::size_t mostQueuedBytes = std::size_t{4} << 20;

/// Lines that come this close together share one opening of the file.
constexpr std::chrono::milliseconds lingering{2};

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
    log.file =
        FileDescriptor(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK,
                              fileMode(Access::userOnly)));
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
    // A path that names a FIFO is written to as far as it goes, but not waited for.
    writeWhole(log->file.get(), batch, WhenFull::giveUp);
    rotated = false;
  }
}

Logger::Logger(std::filesystem::path file, std::chrono::milliseconds readerTimeout)
    : logFile(std::move(file)), errorStream(STDERR_FILENO, readerTimeout) {
  ensureDirectoryExists(logFile.parent_path());
}

Logger::~Logger() {
  {
    const std::scoped_lock lock(mutex);
    stopping = true;
  }
  changed.notify_all();
  if (worker.joinable()) worker.join();
}

void Logger::emit(Level level, std::string_view message) {
  std::string line = "[";
  line += formatDate(currentDate());
  line += "] [";
  line += levelNames[static_cast<std::size_t>(level)];
  line += "] ";
  line += escapeControls(message);
  line += '\n';
  {
    const std::scoped_lock lock(errorMutex);
    errorStream.write(line);
  }
  queueForFile(std::move(line));
}

void Logger::queueForFile(std::string line) {
  std::unique_lock lock(mutex);
  if (!worker.joinable()) {
    try {
      worker = std::thread(&Logger::writeQueuedLines, this);
    } catch (const std::system_error&) {
      return;
    }
  }
  // For the worker to have caught up with a disk that is slow.
  changed.wait(lock, [this] { return queuedBytes < mostQueuedBytes; });
  queuedBytes += line.size();
  queued.push_back(std::move(line));
  if (std::exchange(workerIdle, false)) {
    // It would otherwise wake only to wait for the lock.
    lock.unlock();
    changed.notify_all();
  }
}

void Logger::writeQueuedLines() {
  std::unique_lock lock(mutex);
  while (true) {
    workerIdle = queued.empty();
    // For lines, or for the end, which comes only after the last line.
    changed.wait(lock, [this] { return stopping || !queued.empty(); });
    if (queued.empty()) return;
    // For time to pass, so that further lines come along; the end does not wait for that.
    changed.wait_for(lock, lingering, [this] { return stopping; });
    const auto lines = std::exchange(queued, {});
    const std::size_t bytes = queuedBytes;
    lock.unlock();
    appendToLogFile(logFile, lines);
    lock.lock();
    queuedBytes -= bytes;
    changed.notify_all();
  }
}

}  // namespace corvane
