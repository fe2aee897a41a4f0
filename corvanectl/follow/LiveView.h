#pragma once

#include <optional>
#include <string>

#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/follow/RunPlan.h"
#include "corvanectl/terminal/Console.h"
#include "corvanectl/terminal/Style.h"

namespace corvane::ctl {

/// Shows a followed request on a terminal: a line for each test that is over, and below them one
/// live line with what runs, for how long, and how long it may still take.
class LiveView final : public FollowObserver {
 public:
  /// Draws where `place` says, which is a terminal that can be redrawn. `console` outlives the
  /// view.
  LiveView(Console& console, ProgressPlace place, Style style, FollowTime beginning)
      : console(console),
        place(place),
        style(style),
        beginning(beginning),
        testBeginning(beginning),
        latest(beginning) {}

  void take(const FollowEvent& event, FollowTime now) override;
  void tick(FollowTime now) override;

 private:
  void show(const events::Began& began);
  void show(const events::PickedUp&) {}
  void show(const events::Planned& planned) { expectation = planned.expectation; }
  void show(const events::StatusChanged& changed);
  void show(const events::TestStarted& started);
  void show(const events::StepStarted& started);
  void show(const events::TestFinished& finished);
  void show(const events::HealthChanged& changed);
  void show(const events::Finished&) { console.endProgress(); }
  void show(const events::LeftOff&) { console.endProgress(); }
  void printLine(std::string line);
  [[nodiscard]] std::string composed(FollowTime now) const;
  [[nodiscard]] std::string time(FollowTime now) const;
  [[nodiscard]] std::optional<double> secondsLeft(FollowTime now) const;

  Console& console;
  ProgressPlace place;
  Style style;
  FollowTime beginning;
  std::optional<Expectation> expectation;
  std::string requestId;
  /// What is known of the request while no step runs.
  std::string status = "looking for the request";
  std::optional<TestPlace> test;
  FollowTime testBeginning;
  std::string step;
  FollowTime latest;
};

}  // namespace corvane::ctl
