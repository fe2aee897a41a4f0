#include "corvane_mcp/server/Clock.h"

#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/use_awaitable.hpp>

namespace corvane {

FileTime SystemClock::now() const {
  return std::chrono::time_point_cast<FileTime::duration>(std::chrono::system_clock::now());
}

Clock::Elapsed SystemClock::elapsed() const {
  return std::chrono::steady_clock::now();
}

Task<void> SystemClock::sleepFor(std::chrono::milliseconds duration) const {
  asio::steady_timer timer(co_await asio::this_coro::executor, endOfSleep(elapsed() + duration));
  co_await timer.async_wait(asio::use_awaitable);
}

Clock::Elapsed SystemClock::endOfSleep(Elapsed due) {
  // A thousand calls that wait would otherwise wake a thread each for itself.
  using Grid = std::chrono::duration<std::int64_t, std::centi>;
  return std::chrono::ceil<Grid>(due);
}

}  // namespace corvane
