#pragma once

#include <chrono>

namespace corvane {

/// The moment at which a wait gives up.
using Deadline = std::chrono::steady_clock::time_point;
using Seconds = std::chrono::duration<double>;

inline constexpr Deadline never = Deadline::max();

/// The moment `time` from now. `time` is at most some years.
[[nodiscard]] inline Deadline after(Seconds time) {
  return std::chrono::steady_clock::now() +
         std::chrono::duration_cast<std::chrono::steady_clock::duration>(time);
}

[[nodiscard]] inline bool hasPassed(Deadline deadline) {
  return std::chrono::steady_clock::now() >= deadline;
}

}  // namespace corvane
