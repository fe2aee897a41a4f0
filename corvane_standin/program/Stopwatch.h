#pragma once

#include "corvane_standin/program/Clock.h"

namespace corvane::standin {

/// Measures how long the work in hand has lasted.
class Stopwatch {
 public:
  /// Starts at once. `clock` outlives the stopwatch.
  explicit Stopwatch(const Clock& clock) : clock(&clock), began(clock.now()) {}

  void restart() { began = clock->now(); }
  [[nodiscard]] Clock::Duration elapsed() const { return clock->now() - began; }
  [[nodiscard]] bool hasReached(double seconds) const {
    return elapsed() >= std::chrono::duration<double>(seconds);
  }

 private:
  const Clock* clock;
  Clock::Time began;
};

}  // namespace corvane::standin
