#include "corvane_mcp/server/DispatchOrder.h"

namespace corvane {

std::optional<DispatchOrder::Turn> DispatchOrder::tryEnter() {
  const std::scoped_lock lock(mutex);
  if (std::exchange(isTaken, true)) return std::nullopt;
  return Turn(*this);
}

void DispatchOrder::enter(std::function<void(Turn)> begin) {
  {
    const std::scoped_lock lock(mutex);
    if (std::exchange(isTaken, true)) {
      waiting.push(std::move(begin));
      return;
    }
  }
  begin(Turn(*this));
}

void DispatchOrder::passOn() {
  std::function<void(Turn)> begin;
  {
    const std::scoped_lock lock(mutex);
    if (waiting.empty()) {
      isTaken = false;
      return;
    }
    begin = std::move(waiting.front());
    waiting.pop();
  }
  begin(Turn(*this));
}

}  // namespace corvane
