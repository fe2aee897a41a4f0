#pragma once

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

namespace corvane::testing {

/// How long tests wait for something that happens at once on a healthy machine.
inline constexpr std::chrono::seconds testTimeout{30};

/// Returns when `condition` holds. Throws std::runtime_error naming `what` when it does not come
/// to hold.
template <class Condition>
void waitUntil(std::string_view what, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + testTimeout;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error(std::string("waited in vain until ").append(what));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace corvane::testing
