#pragma once

#include <asio/awaitable.hpp>
#include <chrono>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"

namespace corvane {

/// A coroutine that runs on the server's pool. It does not start before it is awaited.
template <class Result>
using Task = asio::awaitable<Result>;

/// Time, taken from outside by everything that waits or reads it, so that a test can let minutes
/// pass at once. May be used from any thread.
class Clock {
 public:
  using Elapsed = std::chrono::steady_clock::time_point;

  virtual ~Clock() = default;

  /// The wall clock: for comparing with dates in files. May jump.
  [[nodiscard]] virtual FileTime now() const = 0;
  /// now() as files carry it.
  [[nodiscard]] Date date() const { return std::chrono::floor<std::chrono::seconds>(now()); }
  /// Grows evenly and never jumps: for deadlines.
  [[nodiscard]] virtual Elapsed elapsed() const = 0;
  /// Suspends the calling task, up to 10 ms longer than asked; no thread waits.
  [[nodiscard]] virtual Task<void> sleepFor(std::chrono::milliseconds duration) const = 0;
};

/// The system's clocks.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] FileTime now() const override;
  [[nodiscard]] Elapsed elapsed() const override;
  [[nodiscard]] Task<void> sleepFor(std::chrono::milliseconds duration) const override;
  /// When a sleep that is due at `due` ends: then or up to 10 ms later, together with others.
  [[nodiscard]] static Elapsed endOfSleep(Elapsed due);
};

/// Whole seconds from `then` to `now`, truncated toward zero.
[[nodiscard]] inline std::int64_t secondsBetween(FileTime then, FileTime now) {
  return std::chrono::duration_cast<std::chrono::seconds>(now - then).count();
}
/// The same for a date, which may lie beyond what a FileTime can hold.
[[nodiscard]] inline std::int64_t secondsBetween(Date then, FileTime now) {
  using std::chrono::seconds;
  const Date whole = std::chrono::floor<seconds>(now);
  return ((whole < then ? std::chrono::ceil<seconds>(now) : whole) - then).count();
}

}  // namespace corvane
