#include "corvanectl/follow/Follower.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "corvanectl/protocol/ServerProcess.h"

namespace corvane::ctl {

namespace {

using AnswerTexts::Standing;

/// A server that answers without waiting is not asked more often than this.
constexpr Seconds shortestSlice{0.5};

constexpr std::string_view pendingStatus = "pending";

FollowTime later(FollowTime time, Seconds by) {
  return time + std::chrono::duration_cast<FollowTime::duration>(by);
}

bool isPending(const RequestLook& look) {
  return look.standing == Standing::pending;
}

/// Whether a test that a running result lists has been run to its end.
bool isOver(const AgentRunResult::Test& test) {
  const auto status = fromRawValue<RunStatus>(test.status);
  return !status || isTerminal(*status);
}

}  // namespace

RequestLook RequestLook::from(std::string_view answer, bool isError) {
  RequestLook look;
  if (isError) {
    look.refusal = answer;
    return look;
  }
  const auto read = AnswerTexts::readResultAnswer(answer);
  if (!read) throw ProtocolError("the answer of get_result does not begin with a status");
  look.status = read->status;
  look.standing = read->standing;
  look.json = read->result;
  try {
    if (!look.json.empty()) look.result = AgentWire::decode<AgentRunResult>(look.json);
  } catch (const DecodeError&) {
    // Its text is shown as it stands.
  }
  return look;
}

Follower::Follower(Request request, Limits limits, RequestWatch& watch, FollowObserver& observer)
    : request(std::move(request)),
      limits(limits),
      watch(watch),
      observer(observer),
      beginning(watch.now()),
      healthSince(beginning),
      lastWithoutApp(beginning) {
  // Nobody has had the time to pick it up.
  if (this->request.dispatched) lastPending = beginning;
}

Follower::Outcome Follower::run() {
  tell(events::Began{request.id, request.dispatched});
  while (true) {
    const FollowTime nextLook = later(watch.now(), shortestSlice);
    RequestLook seen = look();
    if (seen.refusal) return {End::refused, std::move(seen)};
    tellStatus(seen);
    tellPlan(seen);
    if (seen.result) tellTests(*seen.result);
    if (seen.isOver()) {
      tell(events::Finished{seen.status, seen.json});
      return {End::finished, std::move(seen)};
    }
    if (seen.result) tellStep(*seen.result);
    tellHealth(healthOf(seen));
    const FollowTime now = watch.now();
    observer.tick(now);
    if (now >= limits.end) return {End::timedOut, std::move(seen), health};
    if (health != Health::well && now >= later(healthSince, limits.withoutApp)) {
      return {End::noApp, std::move(seen), health};
    }
    watch.pauseUntil(nextLook);
  }
}

RequestLook Follower::look() {
  const Seconds left = limits.end - watch.now();
  RequestLook look = watch.look(std::clamp<Seconds>(left, Seconds(0), slice));
  if (isPending(look)) lastPending = watch.now();
  if (!isHandover(look)) return look;
  RequestLook pending;
  pending.status = pendingStatus;
  pending.standing = Standing::pending;
  return pending;
}

/// Between removing a request and writing its first result the app leaves no trace of it.
bool Follower::isHandover(const RequestLook& look) {
  return look.refusal && look.refusal->starts_with(AnswerTexts::unknownRequestCode) &&
         lastPending && watch.now() < later(*lastPending, handover);
}

Health Follower::healthOf(const RequestLook& look) {
  if (look.standing == Standing::appNotRunning) return Health::appNotRunning;
  if (look.standing == Standing::stale) return Health::stale;
  if (!isPending(look)) return Health::well;
  if (!watch.appIsRunning()) {
    lastWithoutApp = watch.now();
    return Health::appNotRunning;
  }
  return watch.now() < later(lastWithoutApp, usualPickUp) ? health : Health::notPickedUp;
}

void Follower::tellHealth(Health found) {
  if (found == health) return;
  health = found;
  healthSince = watch.now();
  tell(events::HealthChanged{health});
}

void Follower::tellStatus(const RequestLook& look) {
  const bool wasPending = lastStatus && lastStatus->status == pendingStatus;
  if (!isPending(look) && (wasPending || (!lastStatus && request.dispatched))) {
    tell(events::PickedUp{});
  }
  events::StatusChanged status{look.status, {}, {}};
  if (look.result) {
    status.message = look.result->message;
    status.queuePosition = look.result->queuePosition;
  }
  const auto facts = [](const events::StatusChanged& each) {
    return std::tie(each.status, each.message, each.queuePosition);
  };
  // How it ended is told as the end.
  if (look.isOver() || (lastStatus && facts(*lastStatus) == facts(status))) return;
  lastStatus = status;
  tell(std::move(status));
}

void Follower::tellPlan(const RequestLook& look) {
  if (plan || isPending(look) || look.isOver() || plansAsked++ >= mostPlansAsked) return;
  auto expectation = watch.expectation();
  if (!expectation) return;
  plan = expectation->plan;
  tell(events::Planned{*std::move(expectation)});
}

void Follower::tellTests(const AgentRunResult& result) {
  if (!result.tests) return;
  for (; finishedTests < result.tests->size(); ++finishedTests) {
    const AgentRunResult::Test& test = (*result.tests)[finishedTests];
    if (!result.terminal && !isOver(test)) return;
    const auto count = result.terminal ? std::optional(result.tests->size()) : testCount();
    tell(events::TestFinished{{finishedTests, count, test.testName}, test});
  }
}

void Follower::tellStep(const AgentRunResult& result) {
  if (!result.progress) return;
  auto step = placeOf(*result.progress, finishedTests, plan ? &*plan : nullptr);
  if (!step.test) {
    // What the app says of the test in hand it may say in place of a plan.
    const bool named = result.tests && finishedTests < result.tests->size();
    const std::string name = named ? (*result.tests)[finishedTests].testName : std::string();
    if (named || finishedTests > 0) step.test = TestPlace{finishedTests, testCount(), name};
  }
  if (step.test) startTest(*step.test);
  const auto facts = [](const events::StepStarted& each) {
    return std::tuple(each.test ? std::optional(each.test->index) : std::nullopt, each.index,
                      each.count);
  };
  if (lastStep && facts(*lastStep) == facts(step)) return;
  lastStep = step;
  tell(std::move(step));
}

void Follower::startTest(const TestPlace& test) {
  if (startedTest == test.index) return;
  startedTest = test.index;
  tell(events::TestStarted{test});
}

void Follower::tell(const FollowEvent& event) {
  observer.take(event, watch.now());
}

std::optional<std::size_t> Follower::testCount() const {
  return plan ? std::optional(plan->tests.size()) : std::nullopt;
}

}  // namespace corvane::ctl
