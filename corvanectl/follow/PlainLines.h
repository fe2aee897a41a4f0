#pragma once

#include <string>

#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/terminal/Console.h"

namespace corvane::ctl {

/// Tells of a followed request line by line, for a pipe or a file.
class PlainLines final : public FollowObserver {
 public:
  enum class Extent {
    everything,
    /// Only whether there is an app that works on the request.
    health,
  };

  /// `console` outlives this.
  PlainLines(Console& console, ProgressPlace place, Extent extent)
      : console(console), place(place), extent(extent) {}

  void take(const FollowEvent& event, FollowTime now) override;

 private:
  Console& console;
  ProgressPlace place;
  Extent extent;
  std::string requestId;
};

}  // namespace corvane::ctl
