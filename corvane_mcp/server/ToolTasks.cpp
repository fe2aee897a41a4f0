#include "corvane_mcp/server/ToolTasks.h"

#include <asio/co_spawn.hpp>
#include <asio/post.hpp>
#include <exception>

namespace corvane {

namespace {

/// Enough that one slow folder does not hold up the other calls.
constexpr std::size_t threadCount = 4;

}  // namespace

ToolTasks::~ToolTasks() {
  if (pool) pool->join();
}

void ToolTasks::start(Task<void> task) {
  {
    const std::scoped_lock lock(mutex);
    if (!pool) pool.emplace(threadCount);
  }
  // A thread of the pool would begin a task that it starts at once, inside the task that it is at:
  // where each call starts the next, thousands of them would share one stack.
  asio::post(*pool, [this, task = std::move(task)]() mutable {
    asio::co_spawn(*pool, std::move(task), [](const std::exception_ptr& fault) {
      if (fault) std::terminate();
    });
  });
}

ToolTasks::InFlight ToolTasks::count() {
  const std::scoped_lock lock(mutex);
  ++running;
  return InFlight(*this);
}

std::size_t ToolTasks::inFlight() const {
  const std::scoped_lock lock(mutex);
  return running;
}

void ToolTasks::waitUntilIdle() {
  std::unique_lock lock(mutex);
  idle.wait(lock, [this] { return running == 0; });
}

void ToolTasks::finished() {
  // Notified under the lock: once it is released the owner may be gone.
  const std::scoped_lock lock(mutex);
  if (--running == 0) idle.notify_all();
}

}  // namespace corvane
