#include "corvane_mcp/server/Leadership.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <set>

namespace corvane::testing {
namespace {

TEST(LeadershipTest, LeadsOnTheCallersThreadUntilTheEnd) {
  std::thread::id leader;
  Leadership leadership([&] {
    leader = std::this_thread::get_id();
    leadership.end();
  });
  leadership.run();
  EXPECT_EQ(leader, std::this_thread::get_id());
}

// Fails when the leader goes on once it has handed over, or nobody takes over.
TEST(LeadershipTest, IsHandedToTheOtherThreadAndBack) {
  constexpr int turns = 1000;
  int turn = 0;
  std::set<std::thread::id> leaders;
  std::atomic<int> leading = 0;
  Leadership leadership([&] {
    EXPECT_EQ(++leading, 1);
    leaders.insert(std::this_thread::get_id());
    const bool isLast = ++turn == turns;
    --leading;
    if (isLast) return leadership.end();
    while (!leadership.handOver()) std::this_thread::yield();
  });
  leadership.run();
  EXPECT_EQ(turn, turns);
  EXPECT_EQ(leaders.size(), 2U);
}

// Fails when a hand-over is promised that nobody can keep.
TEST(LeadershipTest, StaysWhereItIsWhileTheOtherThreadIsBusy) {
  std::latch release(1);
  bool first = true;
  Leadership leadership([&] {
    if (std::exchange(first, false)) {
      EXPECT_TRUE(leadership.handOver());
      release.wait();
      return;
    }
    EXPECT_FALSE(leadership.handOver());
    leadership.end();
    release.count_down();
  });
  leadership.run();
}

// Fails when run() leaves a thread behind that is busy.
TEST(LeadershipTest, ReturnsWhenBothThreadsAreDone) {
  std::latch ended(1);
  bool first = true;
  bool isDone = false;
  Leadership leadership([&] {
    if (!std::exchange(first, false)) {
      leadership.end();
      ended.count_down();
      ended.wait();
      std::this_thread::yield();
      isDone = true;
      return;
    }
    EXPECT_TRUE(leadership.handOver());
    ended.wait();
  });
  leadership.run();
  EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace corvane::testing
