#include "corvane_mcp/server/Logger.h"

#include <unistd.h>

#include <array>
#include <system_error>
#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvane_mcp/server/LogFile.h"

namespace corvane {

namespace {

constexpr std::array<std::string_view, 3> levelNames{"INFO", "WARN", "ERROR"};

/// Lines that wait for the file beyond this hold their callers back, so that memory stays bounded.
constexpr std::size_t mostQueuedBytes = std::size_t{4} << 20;

/// Lines that come this close together share one opening of the file.
constexpr std::chrono::milliseconds lingering{2};

}  // namespace

Logger::Logger(std::filesystem::path file, std::chrono::milliseconds readersPatience)
    : logFile(std::move(file)), errorStream(STDERR_FILENO, readersPatience) {
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
    changed.wait(lock, [this] { return stopping || !queued.empty(); });
    if (queued.empty()) return;
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
