#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "corvane_mcp/server/StandardStreams.h"

namespace corvane {

/// Appends `lines`, each ending in a line feed, to the log file. Before a line that finds the file
/// larger than 1 MiB the file becomes the one old generation ("mcp.log" becomes "mcp.1.log") and a
/// fresh one begins. The file is open only meanwhile, and locked against other servers' rotations.
/// Failures are ignored.
void appendToLogFile(const std::filesystem::path& logFile, const std::vector<std::string>& lines);

/// The server's only diagnostic channel: every line goes to standard error at once and, in order,
/// to a log file that is rotated once it has grown past 1 MiB. Failures are never reported. May be
/// called from any thread; several processes may share one log file.
class Logger {
 public:
  enum class Level { info, warn, error };

  /// Creates the log file's folder, with parents. Whoever reads standard error may pause for
  /// `readerTimeout` before lines are dropped there.
  explicit Logger(std::filesystem::path logFile,
                  std::chrono::milliseconds readerTimeout = std::chrono::seconds(1));
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;
  /// Returns when every line is in the file.
  ~Logger();

  /// Writes "[timestamp] [LEVEL] message". Control characters of the message are escaped, so that
  /// one event is one line that reads from left to right. Returns at once, unless the disk has
  /// fallen megabytes behind or whoever reads standard error has just stopped reading.
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
  /// Announces each change that one of three waits is for: lines for the worker, less in the queue
  /// for callers that the queue holds back, and the end. Few wait at a time, so all are woken.
  std::condition_variable changed;
  std::vector<std::string> queued;
  std::size_t queuedBytes = 0;
  /// Whether the file worker waits without a time limit and so needs a call.
  bool workerIdle = true;
  bool stopping = false;
  /// Writes the file. Starts with the first line; the destructor waits for it before anything that
  /// it uses goes.
  std::thread worker;
};

}  // namespace corvane
