#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/follow/FollowEvents.h"
#include "corvanectl/follow/RequestWatch.h"
#include "corvanectl/follow/RunPlan.h"

namespace corvane::ctl {

/// Follows a request by looking at it again and again, and tells an observer what has changed.
class Follower {
 public:
  struct Request {
    std::string id;
    /// Whether it was dispatched just now.
    bool dispatched = false;
  };

  struct Limits {
    /// When following ends.
    FollowTime end = FollowTime::max();
    /// For how long it goes on while there is no app that works on the request.
    Seconds withoutApp{60};
  };

  enum class End {
    /// The request has finished.
    finished,
    /// The tool says that there is no such request, or that its result cannot be read.
    refused,
    timedOut,
    noApp,
  };

  struct Outcome {
    End end;
    /// What was seen last.
    RequestLook look;
    Health health = Health::well;
  };

  /// One look waits no longer than this, so nothing stays untold for longer.
  static constexpr Seconds slice{1};
  /// How long an app that runs may leave a request where it is without a word.
  static constexpr Seconds usualPickUp{5};
  /// How long the app may take from removing a request to writing its first result.
  static constexpr Seconds handover{5};
  /// How often a plan is asked for: an app that has just been started publishes it only then.
  static constexpr int mostPlansAsked = 3;

  /// `watch` and `observer` outlive this.
  Follower(Request request, Limits limits, RequestWatch& watch, FollowObserver& observer);

  /// Follows the request to its end or to a limit. Throws what watch and observer throw.
  [[nodiscard]] Outcome run();

 private:
  [[nodiscard]] RequestLook look();
  [[nodiscard]] bool isHandover(const RequestLook& look);
  [[nodiscard]] Health healthOf(const RequestLook& look);
  void tellPlan(const RequestLook& look);
  void tellHealth(Health found);
  void tellStatus(const RequestLook& look);
  void tellTests(const AgentRunResult& result);
  void tellStep(const AgentRunResult& result);
  void startTest(const TestPlace& test);
  void tell(const FollowEvent& event);
  [[nodiscard]] std::optional<std::size_t> testCount() const;

  Request request;
  Limits limits;
  RequestWatch& watch;
  FollowObserver& observer;
  FollowTime beginning;
  Health health = Health::well;
  /// Since when it has been like that.
  FollowTime healthSince;
  /// When no app was seen to run last, or following began.
  FollowTime lastWithoutApp;
  /// When the request was last seen waiting to be picked up.
  std::optional<FollowTime> lastPending;
  std::optional<events::StatusChanged> lastStatus;
  std::optional<RunPlan> plan;
  int plansAsked = 0;
  std::size_t finishedTests = 0;
  std::optional<std::size_t> startedTest;
  std::optional<events::StepStarted> lastStep;
};

}  // namespace corvane::ctl
