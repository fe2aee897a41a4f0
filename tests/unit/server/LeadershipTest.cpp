#include "corvane_mcp/server/Leadership.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <set>

#include "tests/support/Timeout.h"

namespace corvane::testing {
namespace {

/// A thread that has just lost the lead takes a moment to follow.
Leadership::Absence beginAbsence(Leadership& leadership) {
  std::optional<Leadership::Absence> absence;
  waitUntil("a thread follows", [&] { return (absence = leadership.beginAbsence()).has_value(); });
  return *absence;
}

TEST(LeadershipTest, LeadsOnTheCallersThreadUntilTheEnd) {
  std::thread::id leader;
  Leadership leadership([&] {
    leader = std::this_thread::get_id();
    leadership.end();
  });
  leadership.run();
  EXPECT_EQ(leader, std::this_thread::get_id());
}

// Fails when the lead passes on with every absence, or when two lead at once.
TEST(LeadershipTest, KeepsTheLeadThroughShortAbsences) {
  constexpr int absences = 10'000;
  int kept = 0;
  int leaders = 0;
  std::atomic<int> leading = 0;
  Leadership leadership([&] {
    ++leaders;
    EXPECT_EQ(++leading, 1);
    while (kept < absences) {
      // Once the absence has begun, another may lead.
      --leading;
      const auto absence = beginAbsence(leadership);
      if (!leadership.endAbsence(absence)) return;
      EXPECT_EQ(++leading, 1);
      ++kept;
    }
    leadership.end();
  });
  leadership.run();
  EXPECT_EQ(kept, absences);
  // A thread may be kept from running at any time, and is absent then.
  EXPECT_LT(leaders, absences / 10);
}

// Fails when nobody takes the lead of one who is busy, or when both go on leading then.
TEST(LeadershipTest, PassesToAnotherThreadMeanwhile) {
  constexpr int turns = 20;
  std::atomic<int> turn = 0;
  std::set<std::thread::id> leaders;
  std::atomic<int> led = 0;
  Leadership leadership([&] {
    leaders.insert(std::this_thread::get_id());
    if (++turn == turns) return leadership.end();
    const int before = ++led;
    const auto absence = beginAbsence(leadership);
    waitUntil("another leads", [&] { return led > before || turn == turns; });
    EXPECT_FALSE(leadership.endAbsence(absence));
  });
  leadership.run();
  EXPECT_EQ(turn, turns);
  EXPECT_GE(leaders.size(), 2U);
  EXPECT_LE(leaders.size(), Leadership::mostThreads);
}

// Fails when the thread that comes back takes the lead from the one that is absent now.
TEST(LeadershipTest, IsNotTakenBackFromWhoIsAbsentLater) {
  std::latch secondIsAbsent(1);
  std::latch firstIsBack(1);
  int turn = 0;
  Leadership leadership([&] {
    switch (++turn) {
      case 1: {
        const auto absence = beginAbsence(leadership);
        secondIsAbsent.wait();
        EXPECT_FALSE(leadership.endAbsence(absence));
        firstIsBack.count_down();
        return;
      }
      case 2: {
        const auto absence = beginAbsence(leadership);
        secondIsAbsent.count_down();
        firstIsBack.wait();
        if (leadership.endAbsence(absence)) leadership.end();
        return;
      }
      default:
        return leadership.end();
    }
  });
  leadership.run();
}

// Fails when an absence is allowed although nobody could take the lead.
TEST(LeadershipTest, AllowsNoAbsenceWhileTheOtherThreadsAreBusy) {
  std::latch release(1);
  std::size_t turn = 0;
  Leadership leadership([&] {
    if (++turn < Leadership::mostThreads) {
      EXPECT_TRUE(leadership.beginAbsence());
      release.wait();
      return;
    }
    EXPECT_FALSE(leadership.beginAbsence());
    leadership.end();
    release.count_down();
  });
  leadership.run();
}

// Fails when a follower that has gone to sleep stays so.
TEST(LeadershipTest, FollowersWakeUpAfterALongPause) {
  std::atomic<int> turn = 0;
  Leadership leadership([&] {
    if (++turn == 2) return leadership.end();
    if (!leadership.endAbsence(beginAbsence(leadership))) return;
    std::this_thread::sleep_for(40 * Leadership::patience);
    (void)beginAbsence(leadership);
    waitUntil("the follower leads", [&] { return turn == 2; });
  });
  leadership.run();
  EXPECT_EQ(turn, 2);
}

// Fails when run() leaves a thread behind that is busy.
TEST(LeadershipTest, ReturnsWhenAllThreadsAreDone) {
  std::latch ended(1);
  int turn = 0;
  std::atomic<bool> isDone = false;
  Leadership leadership([&] {
    if (++turn == 1) {
      EXPECT_TRUE(leadership.beginAbsence());
      return ended.wait();
    }
    leadership.end();
    ended.count_down();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    isDone = true;
  });
  leadership.run();
  EXPECT_TRUE(isDone);
}

}  // namespace
}  // namespace corvane::testing
