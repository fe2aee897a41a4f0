#pragma once

#include <asio/thread_pool.hpp>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>

#include "corvane_mcp/server/Clock.h"

namespace corvane {

/// Runs the tool calls in flight on a small pool of threads. A task that waits occupies no thread;
/// one that works on files occupies one of a few. The threads start with the first task, so that a
/// server that is only asked for its tools never pays for them.
class ToolTasks {
 public:
  ToolTasks() = default;
  ToolTasks(const ToolTasks&) = delete;
  ToolTasks& operator=(const ToolTasks&) = delete;
  /// Waits for the tasks in flight.
  ~ToolTasks();

  /// Starts `task`, which must not throw. Called by one thread only. Throws when the system is out
  /// of threads or memory; the task has then not started.
  void start(Task<void> task);
  /// How many tasks have not finished yet. May be called from any thread.
  [[nodiscard]] std::size_t inFlight() const;
  /// Returns when no task is in flight.
  void waitUntilIdle();

 private:
  void finished();

  mutable std::mutex mutex;
  std::condition_variable idle;
  std::size_t running = 0;
  /// After what its threads use when a task ends.
  std::optional<asio::thread_pool> pool;
};

}  // namespace corvane
