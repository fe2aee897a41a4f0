#pragma once

#include <chrono>

#include "CorvaneCore/json/Date.h"

namespace corvane::standin {

/// Tells the stand-in the time. Everything that waits asks it, so that a test can let hours pass.
class Clock {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::steady_clock::duration;

  virtual ~Clock() = default;

  /// For measuring how long something takes; never goes back.
  [[nodiscard]] virtual Time now() const = 0;
  /// What files and log lines are dated with.
  [[nodiscard]] virtual Date date() const = 0;
};

class SystemClock final : public Clock {
 public:
  [[nodiscard]] Time now() const override { return std::chrono::steady_clock::now(); }
  [[nodiscard]] Date date() const override { return currentDate(); }
};

}  // namespace corvane::standin
