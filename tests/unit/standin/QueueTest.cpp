#include <gmock/gmock.h>

#include <fstream>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/workspace/AgentActivity.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::testing {

using namespace standin;

namespace {

using namespace std::chrono_literals;

const char* const held = "Add to cart and remove";
const char* const quick = "Browse the catalogue";

class QueueTest : public StandInFixture {
 protected:
  void SetUp() override {
    setOutcome(held, TestOutcome::Kind::hold);
    start();
  }

  [[nodiscard]] std::optional<std::int64_t> position(const std::string& id) const {
    const auto now = result(id);
    return now.status == "queued" ? now.queuePosition : std::nullopt;
  }

  [[nodiscard]] bool markerExists(const std::string& id) const {
    return fileExists(CancelMarker::fileURL(id, paths));
  }
};

TEST_F(QueueTest, RequestsWaitInTheOrderTheyWereMade) {
  const auto active = drop({held});
  pass(1s);
  auto later = request({quick});
  later.requestId = "00000000-0000-4000-8000-000000000001";
  later.createdAt += 5s;
  auto earlier = request({quick});
  earlier.requestId = "ffffffff-0000-4000-8000-000000000001";
  auto alsoEarlier = earlier;
  alsoEarlier.requestId = "eeeeeeee-0000-4000-8000-000000000001";
  drop(later);
  drop(earlier);
  drop(alsoEarlier);
  pass(1s);
  EXPECT_EQ(status(active), "running");
  EXPECT_EQ(position(alsoEarlier.requestId), 1);
  EXPECT_EQ(position(earlier.requestId), 2);
  EXPECT_EQ(position(later.requestId), 3);

  dropCancelMarker(active);
  pass(300ms);
  EXPECT_EQ(status(active), "cancelled");
  EXPECT_EQ(status(alsoEarlier.requestId), "running");
  EXPECT_EQ(position(earlier.requestId), 1);
  EXPECT_EQ(position(later.requestId), 2);
  EXPECT_EQ(finalResult(later.requestId).status, "passed");
  EXPECT_EQ(status(earlier.requestId), "passed");
}

TEST_F(QueueTest, ARequestIsReceivedBeforeItIsQueued) {
  drop({held});
  pass(1s);
  const auto waiting = drop({quick});
  ASSERT_TRUE(standIn->tick());
  EXPECT_EQ(status(waiting), "received");
  ASSERT_TRUE(standIn->tick());
  EXPECT_EQ(position(waiting), 1);
}

TEST_F(QueueTest, WaitingRequestsBeat) {
  drop({held});
  pass(1s);
  const auto waiting = drop({quick});
  pass(10min);
  EXPECT_EQ(position(waiting), 1);
  EXPECT_LE(clock.date() - result(waiting).updatedAt, 16s);
}

TEST_F(QueueTest, AWaitingRequestIsCancelledAtOnce) {
  drop({held});
  pass(1s);
  const auto first = drop({quick});
  pass(1s);
  const auto second = drop({quick});
  pass(1s);
  dropCancelMarker(first);
  ASSERT_TRUE(standIn->tick());
  const auto cancelled = result(first);
  EXPECT_EQ(cancelled.status, "cancelled");
  EXPECT_TRUE(cancelled.terminal);
  EXPECT_EQ(cancelled.message, "Cancelled while it waited in the queue.");
  EXPECT_FALSE(cancelled.queuePosition);
  EXPECT_FALSE(markerExists(first));
  ASSERT_TRUE(standIn->tick());
  EXPECT_EQ(position(second), 1);
}

TEST_F(QueueTest, AMarkerBesideItsRequestCancelsIt) {
  const auto id = drop({quick});
  dropCancelMarker(id);
  ASSERT_TRUE(standIn->tick());
  EXPECT_EQ(status(id), "cancelled");
  EXPECT_FALSE(markerExists(id));
}

TEST_F(QueueTest, ARunningRequestIsCancelledBetweenTwoSteps) {
  const auto id = drop({quick});
  pass(700ms);
  ASSERT_EQ(result(id).progress.value().currentStep, 2);
  dropCancelMarker(id);
  ASSERT_TRUE(standIn->tick());
  EXPECT_EQ(status(id), "running");
  EXPECT_FALSE(markerExists(id));
  const auto last = finalResult(id);
  EXPECT_EQ(last.status, "cancelled");
  const auto& test = last.tests.value().at(0);
  EXPECT_EQ(test.status, "cancelled");
  EXPECT_EQ(test.steps.at(1).status, "passed");
  EXPECT_EQ(test.steps.at(2).status, "skipped");
}

TEST_F(QueueTest, ABuildIsCancelledAtOnce) {
  auto wanted = request({quick});
  wanted.buildFirst = true;
  drop(wanted);
  pass(300ms);
  ASSERT_EQ(status(wanted.requestId), "building");
  dropCancelMarker(wanted.requestId);
  pass(200ms);
  EXPECT_EQ(status(wanted.requestId), "cancelled");
  EXPECT_EQ(result(wanted.requestId).message, "Cancelled while the app was being built.");
}

TEST_F(QueueTest, AMarkerForAnEndedOrUnknownRequestOnlyGoesAway) {
  const auto id = drop({quick});
  ASSERT_EQ(finalResult(id).status, "passed");
  const auto file = AgentRunResult::fileURL(id, paths);
  const auto before = readStamp(file);
  const auto unknown = makeRequestId();
  dropCancelMarker(id);
  dropCancelMarker(unknown);
  dropCancelMarker("nobody");
  pass(1s);
  EXPECT_EQ(readStamp(file), before);
  EXPECT_FALSE(fileExists(AgentRunResult::fileURL(unknown, paths)));
  EXPECT_TRUE(listVisible(paths.agentRunRequestsDirectory()).empty());
}

TEST_F(QueueTest, ARequestDroppedTwiceRunsOnce) {
  const auto wanted = request({held});
  drop(wanted);
  pass(1s);
  drop(wanted);
  pass(1s);
  EXPECT_EQ(status(wanted.requestId), "running");
  dropCancelMarker(wanted.requestId);
  pass(1s);
  EXPECT_EQ(status(wanted.requestId), "cancelled");
}

TEST_F(QueueTest, AResultThatWasTakenAwayIsNotBroughtBack) {
  drop({quick});
  pass(1s);
  const auto waiting = drop({quick});
  pass(300ms);
  std::filesystem::remove_all(paths.agentResultsDirectory());
  dropCancelMarker(waiting);
  pass(1min);
  standIn->quit();
  EXPECT_FALSE(fileExists(paths.agentResultsDirectory()));
}

TEST_F(QueueTest, ABrokenRequestIsAnsweredWhileOthersRun) {
  const auto active = drop({held});
  pass(1s);
  const auto broken = makeRequestId();
  std::ofstream(AgentRunRequest::fileURL(broken, paths)) << R"({"projectName":7})";
  pass(1s);
  const auto answer = result(broken);
  EXPECT_EQ(answer.status, "error");
  EXPECT_EQ(answer.message, "Corvane cannot use the request file: schemaVersion: required");
  EXPECT_EQ(status(active), "running");
}

class ActivityTest : public StandInFixture {
 protected:
  void SetUp() override {
    setOutcome(held, TestOutcome::Kind::hold);
    start();
  }

  [[nodiscard]] AgentActivity activity() const {
    const auto read = AgentActivity::read(paths);
    EXPECT_TRUE(read);
    return read.value_or(AgentActivity());
  }
};

TEST_F(ActivityTest, AnIdleAppBeats) {
  const auto first = activity();
  EXPECT_FALSE(first.active);
  EXPECT_TRUE(first.queued.empty());
  EXPECT_FALSE(first.schedulerBusy);
  EXPECT_FALSE(first.authoringActive);
  ASSERT_TRUE(first.device);
  EXPECT_EQ(first.device->platform, "iOS");
  EXPECT_EQ(first.device->name, "Pocket 17");
  EXPECT_TRUE(first.device->connected);
  for (int minute = 0; minute < 3; ++minute) {
    pass(1min);
    EXPECT_LE(clock.date() - activity().updatedAt, 16s);
  }
}

TEST_F(ActivityTest, NamesTheActiveRequestAndTheQueueBehindIt) {
  pass(10s);
  const auto startedAt = clock.date();
  const auto active = drop({held});
  pass(1s);
  auto second = request({held});
  drop(second);
  pass(1s);
  const auto third = drop({held});
  pass(1s);
  const auto now = activity();
  ASSERT_TRUE(now.active);
  EXPECT_EQ(now.active->requestId, active);
  EXPECT_EQ(now.active->kind, "run");
  EXPECT_EQ(now.active->startedAt, startedAt);
  ASSERT_EQ(now.queued.size(), 2U);
  EXPECT_EQ(now.queued[0].requestId, second.requestId);
  EXPECT_EQ(now.queued[0].kind, "run");
  EXPECT_EQ(now.queued[0].position, 1);
  EXPECT_EQ(now.queued[1].requestId, third);
  EXPECT_EQ(now.queued[1].position, 2);
}

TEST_F(ActivityTest, AWedgedAppNoLongerBeats) {
  setOutcome(held, TestOutcome::Kind::wedged);
  start();
  const auto id = drop({held});
  pass(10s);
  const auto stuck = activity().updatedAt;
  pass(5min);
  EXPECT_EQ(activity().updatedAt, stuck);
  EXPECT_EQ(activity().active.value().requestId, id);
  dropCancelMarker(id);
  pass(1s);
  EXPECT_FALSE(activity().active);
}

TEST_F(ActivityTest, AnAppThatQuitsClaimsNothing) {
  drop({held});
  pass(1s);
  ASSERT_TRUE(activity().active);
  standIn->quit();
  EXPECT_FALSE(activity().active);
}

TEST_F(ActivityTest, AFileThatWasTakenAwayIsNotBroughtBack) {
  std::filesystem::remove_all(paths.agentMCPDirectory());
  pass(1min);
  standIn->quit();
  EXPECT_FALSE(fileExists(paths.agentMCPDirectory()));
}

}  // namespace
}  // namespace corvane::testing
