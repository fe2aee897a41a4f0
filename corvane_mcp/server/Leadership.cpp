#include "corvane_mcp/server/Leadership.h"

#include <exception>

namespace corvane {

namespace {

/// So often in a row a follower looks after a leader to whom nothing comes up before it goes to
/// sleep. Waking it again costs the leader more than all else here.
constexpr int idleLooks = 20;

}  // namespace

void Leadership::run() {
  leadAndFollow();
  for (auto& other : others) other.join();
}

std::optional<Leadership::Absence> Leadership::beginAbsence() {
  const std::scoped_lock lock(mutex);
  if (following == 0 && !startFollower()) return std::nullopt;
  isAbsent = true;
  ++lastAbsence;
  if (asleep > 0) changed.notify_one();
  return lastAbsence;
}

bool Leadership::endAbsence(Absence absence) {
  const std::scoped_lock lock(mutex);
  // The lead was taken, and whoever has it now may be absent, too.
  if (!isAbsent || absence != lastAbsence) return false;
  isAbsent = false;
  return true;
}

void Leadership::end() {
  const std::scoped_lock lock(mutex);
  hasEnded = true;
  changed.notify_all();
}

bool Leadership::startFollower() {
  if (others.size() + 1 == mostThreads) return false;
  try {
    others.emplace_back([this] {
      if (follow()) leadAndFollow();
    });
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

void Leadership::leadAndFollow() {
  do {
    lead();
  } while (follow());
}

bool Leadership::follow() {
  std::unique_lock lock(mutex);
  ++following;
  int looks = 0;
  while (!hasEnded) {
    const Absence seen = lastAbsence;
    if (looks < idleLooks) {
      changed.wait_for(lock, patience);
    } else {
      ++asleep;
      changed.wait(lock, [&] { return hasEnded || lastAbsence != seen; });
      --asleep;
    }
    if (isAbsent && lastAbsence == seen) {
      isAbsent = false;
      --following;
      return !hasEnded;
    }
    looks = lastAbsence == seen ? looks + 1 : 0;
  }
  return false;
}

}  // namespace corvane
