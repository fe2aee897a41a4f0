#include "corvanectl/follow/PlainLines.h"

#include "corvanectl/follow/FollowWords.h"
#include "corvanectl/results/RequestResult.h"

namespace corvane::ctl {

namespace {

/// The line, or lines, for what has no say about health; empty for what is told elsewhere.
struct LinesOf {
  std::string operator()(const events::StatusChanged& changed) const {
    return FollowWords::status(changed) + "\n";
  }
  std::string operator()(const events::StepStarted& started) const {
    const std::string step = FollowWords::step(started) + "\n";
    return started.test ? FollowWords::test(*started.test) + ", " + step : step;
  }
  std::string operator()(const events::TestFinished& finished) const {
    return summarizeTest(finished.test);
  }
  template <class Other>
  std::string operator()(const Other&) const {
    return {};
  }
};

}  // namespace

void PlainLines::take(const FollowEvent& event, FollowTime /*now*/) {
  if (const auto* began = std::get_if<events::Began>(&event)) requestId = began->requestId;
  std::string lines;
  if (const auto* changed = std::get_if<events::HealthChanged>(&event)) {
    lines = FollowWords::health(changed->health, requestId) + "\n";
  } else if (extent == Extent::everything) {
    lines = std::visit(LinesOf(), event);
  }
  if (!lines.empty()) console.printProgress(place, lines);
}

}  // namespace corvane::ctl
