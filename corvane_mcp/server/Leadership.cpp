#include "corvane_mcp/server/Leadership.h"

#include <system_error>

namespace corvane {

void Leadership::run() {
  leadAndFollow();
  if (other.joinable()) other.join();
}

bool Leadership::handOver() {
  {
    const std::scoped_lock lock(mutex);
    if (!other.joinable()) {
      try {
        other = std::thread([this] { leadAndFollow(); });
        return true;
      } catch (const std::system_error&) {
        return false;
      }
    }
    if (!followerWaits) return false;
    followerWaits = false;
    isVacant = true;
  }
  changed.notify_one();
  return true;
}

void Leadership::end() {
  const std::scoped_lock lock(mutex);
  hasEnded = true;
  changed.notify_one();
}

void Leadership::leadAndFollow() {
  while (true) {
    lead();
    std::unique_lock lock(mutex);
    followerWaits = true;
    changed.wait(lock, [this] { return isVacant || hasEnded; });
    if (hasEnded) return;
    isVacant = false;
  }
}

}  // namespace corvane
