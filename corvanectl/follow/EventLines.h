#pragma once

#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/terminal/Console.h"

namespace corvane::ctl {

/// Tells of a followed request on standard output as JSON, an object a line. docs/corvanectl.md
/// describes the objects.
class EventLines final : public FollowObserver {
 public:
  /// `console` outlives this.
  EventLines(Console& console, FollowTime beginning) : console(console), beginning(beginning) {}

  void take(const FollowEvent& event, FollowTime now) override;

 private:
  Console& console;
  FollowTime beginning;
};

}  // namespace corvane::ctl
