#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "corvane_mcp/server/ErrorStream.h"

namespace corvane {

/// The server's only diagnostic channel: every line goes to standard error at once and, in order,
/// to a log file that is rotated once it has grown past 1 MiB. Failures are never reported. May be
/// called from any thread; several processes may share one log file.
class Logger {
 public:
  enum class Level { info, warn, error };

  /// Creates the log file's folder, with parents. Whoever reads standard error may pause for
  /// `readersPatience` before lines are dropped there.
  explicit Logger(std::filesystem::path logFile,
                  std::chrono::milliseconds readersPatience = std::chrono::seconds(1));
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  /// Returns when every line is in the file.
  ~Logger();

  /// Writes "[timestamp] [LEVEL] message". Control characters of the message are escaped, so that
  /// one event is one line. Returns at once, unless the disk has fallen megabytes behind or whoever
  /// reads standard error has just stopped reading.
  void emit(Level level, std::string_view message);
  void info(std::string_view message) { emit(Level::info, message); }
  void warn(std::string_view message) { emit(Level::warn, message); }
  void error(std::string_view message) { emit(Level::error, message); }

 private:
  void queueForFile(std::string line);
  void writeQueuedLines();

  const std::filesystem::path logFile;
  /// Held while a line goes to standard error.
  std::mutex errorMutex;
  ErrorStream errorStream;
  /// Guards everything below.
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::string> queued;
  std::size_t queuedBytes = 0;
  /// Whether the file worker waits without a time limit and so needs a call.
  bool workerIdle = true;
  bool stopping = false;
  std::thread worker;
};

}  // namespace corvane
