#include <gmock/gmock.h>

#include "CorvaneCore/workspace/AgentActivity.h"
#include "tests/unit/standin/StandInFixture.h"

namespace corvane::standin {
namespace {

using namespace std::chrono_literals;

const char* const held = "Add to cart and remove";

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
  EXPECT_LE(now.active->startedAt - startedAt, 1s);
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
}  // namespace corvane::standin
