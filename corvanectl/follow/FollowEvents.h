#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CorvaneCore/results/AgentRunResult.h"
#include "corvanectl/ExitStatus.h"

namespace corvane::ctl {

/// A moment of the follower's clock.
using FollowTime = std::chrono::steady_clock::time_point;

/// Whether there is an app that works on the request.
enum class Health {
  well,
  /// It does not run.
  appNotRunning,
  /// It runs and leaves the request where it is.
  notPickedUp,
  /// It runs, has the request and no longer moves.
  stale,
};

/// The tests that a run goes through, as the workspace has them.
struct RunPlan {
  struct Test {
    std::string name;
    /// What each step does.
    std::vector<std::string> steps;
  };

  std::vector<Test> tests;

  [[nodiscard]] std::int64_t stepCount() const;
};

/// How long tests took in earlier runs, in seconds by name.
using TestDurations = std::map<std::string, double, std::less<>>;

/// What is known of a run beforehand.
struct Expectation {
  RunPlan plan;
  TestDurations earlier;
};

/// Which test of its run one is.
struct TestPlace {
  /// From 0, as results list them.
  std::size_t index = 0;
  /// How many tests the run has, when that is known.
  std::optional<std::size_t> count;
  /// Empty when it is not known.
  std::string name;
};

/// What is told of a followed request, in the order in which it is learned.
namespace events {

struct Began {
  std::string requestId;
  /// Whether it was dispatched just now.
  bool dispatched = false;
};

/// The app has taken the request up.
struct PickedUp {};

/// It has become known what the run goes through.
struct Planned {
  Expectation expectation;
};

/// The request has another status, or another message or place in the queue.
struct StatusChanged {
  std::string status;
  std::optional<std::string> message;
  std::optional<std::int64_t> queuePosition;
};

struct TestStarted {
  TestPlace test;
};

struct StepStarted {
  /// Nothing when it cannot be told which one runs.
  std::optional<TestPlace> test;
  /// From 0, as results and traceStepIndex count; within the test when that is known, else within
  /// the run.
  std::int64_t index = 0;
  /// How many there are, in the test or in the run.
  std::int64_t count = 0;
  /// Empty when it is not known.
  std::string description;
};

struct TestFinished {
  TestPlace place;
  AgentRunResult::Test test;
};

struct HealthChanged {
  Health health = Health::well;
};

struct Finished {
  std::string status;
  /// The result file's text.
  std::string json;
};

/// Following ends here, and the request goes on.
struct LeftOff {
  /// How the program ends; nothing when a signal or a failure ends it.
  std::optional<ExitStatus> exitStatus;
};

}  // namespace events

using FollowEvent =
    std::variant<events::Began, events::PickedUp, events::Planned, events::StatusChanged,
                 events::TestStarted, events::StepStarted, events::TestFinished,
                 events::HealthChanged, events::Finished, events::LeftOff>;

/// Who wants to know. May throw what Console throws.
class FollowObserver {
 public:
  FollowObserver() = default;
  FollowObserver(const FollowObserver&) = delete;
  FollowObserver& operator=(const FollowObserver&) = delete;
  virtual ~FollowObserver() = default;

  virtual void take(const FollowEvent& event, FollowTime now) = 0;
  /// Time has passed, perhaps with nothing to tell.
  virtual void tick(FollowTime /*now*/) {}
};

}  // namespace corvane::ctl
