#pragma once

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

#include "corvane_mcp/server/Clock.h"

namespace corvane::testing {

/// A clock that a test plays: it stands still until somebody sleeps on it or the test lets time
/// pass, and then minutes go by at once. Used by one thread.
class FakeClock final : public Clock {
 public:
  /// Runs after a sleep, with the number of sleeps so far: the place where a test changes files
  /// between two looks at them.
  using AfterSleep = std::function<void(int sleeps)>;

  [[nodiscard]] FileTime now() const override { return wall; }
  [[nodiscard]] Elapsed elapsed() const override { return steady; }
  [[nodiscard]] Task<void> sleepFor(std::chrono::milliseconds duration) const override {
    slept.push_back(duration);
    wall += duration;
    steady += duration;
    if (afterSleep) afterSleep(static_cast<int>(slept.size()));
    co_return;
  }

  /// Lets time pass for everybody.
  void pass(std::chrono::milliseconds duration) {
    wall += duration;
    steady += duration;
  }
  /// Sets the wall clock forward, or back when negative; nothing has passed.
  void jump(std::chrono::milliseconds by) { wall += by; }
  void runAfterEachSleep(AfterSleep action) { afterSleep = std::move(action); }

  /// How long each sleep was.
  [[nodiscard]] const std::vector<std::chrono::milliseconds>& sleeps() const { return slept; }
  /// All sleeps together.
  [[nodiscard]] std::chrono::milliseconds totalSlept() const {
    std::chrono::milliseconds total{0};
    for (const auto duration : slept) total += duration;
    return total;
  }

 private:
  // 2026-01-31T12:00:00Z; any moment would do.
  mutable FileTime wall{std::chrono::seconds(1769860800)};
  mutable Elapsed steady{std::chrono::hours(1)};
  mutable std::vector<std::chrono::milliseconds> slept;
  AfterSleep afterSleep;
};

}  // namespace corvane::testing
