#pragma once

#include <asio/thread_pool.hpp>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <optional>
#include <utility>

#include "corvane_mcp/server/Clock.h"

namespace corvane {

/// The tool calls in flight, and the small pool of threads for those that the reading thread does
/// not run itself. A call that waits occupies no thread; one that works on files occupies one of a
/// few. The threads start with the first task, so that a server that is only asked for its tools
/// never pays for them.
class ToolTasks {
 public:
  /// Counts a call as in flight for as long as it lives.
  class InFlight {
   public:
    InFlight(InFlight&& other) noexcept : tasks(std::exchange(other.tasks, nullptr)) {}
    InFlight& operator=(InFlight&&) = delete;
    ~InFlight() {
      if (tasks) tasks->finished();
    }

   private:
    friend class ToolTasks;
    explicit InFlight(ToolTasks& tasks) : tasks(&tasks) {}

    ToolTasks* tasks;
  };

  ToolTasks() = default;
  ToolTasks(const ToolTasks&) = delete;
  ToolTasks& operator=(const ToolTasks&) = delete;
  /// Waits for the tasks that were started.
  ~ToolTasks();

  /// Counts one more call. May be called from any thread.
  [[nodiscard]] InFlight count();
  /// How many calls have not finished yet. May be called from any thread.
  [[nodiscard]] std::size_t inFlight() const;
  /// Returns when no call is in flight.
  void waitUntilIdle();

  /// Runs `task`, which must not throw, on the pool, never inside this call. May be called from any
  /// thread. Throws when the system is out of threads or memory; the task has then not started.
  void start(Task<void> task);

 private:
  void finished();

  mutable std::mutex mutex;
  std::condition_variable idle;
  std::size_t running = 0;
  /// After what its threads use when a task ends.
  std::optional<asio::thread_pool> pool;
};

}  // namespace corvane
