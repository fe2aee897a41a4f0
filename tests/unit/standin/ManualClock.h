#pragma once

#include "corvane_standin/program/Clock.h"

namespace corvane::standin {

/// A clock that a test moves.
class ManualClock final : public Clock {
 public:
  [[nodiscard]] Time now() const override { return Time(elapsed); }
  [[nodiscard]] Date date() const override {
    const Date start = std::chrono::sys_days(std::chrono::year(2026) / 3 / 1);
    return start + std::chrono::floor<std::chrono::seconds>(elapsed);
  }

  void advance(Duration time) { elapsed += time; }

 private:
  Duration elapsed{};
};

}  // namespace corvane::standin
