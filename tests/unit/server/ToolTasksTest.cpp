#include <gtest/gtest.h>

#include <algorithm>
#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/use_awaitable.hpp>
#include <atomic>
#include <chrono>
#include <latch>
#include <thread>

#include "corvane_mcp/server/Clock.h"
#include "corvane_mcp/server/ToolTasks.h"
#include "tests/support/Timeout.h"
#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

Task<void> sleepThenCount(std::chrono::milliseconds time, std::atomic<int>& count,
                          ToolTasks::InFlight) {
  asio::steady_timer timer(co_await asio::this_coro::executor, time);
  co_await timer.async_wait(asio::use_awaitable);
  ++count;
}

Task<void> waitOnThread(std::latch& latch, ToolTasks::InFlight) {
  latch.wait();
  co_return;
}

TEST(ToolTasksTest, IsIdleBeforeTheFirstTask) {
  ToolTasks tasks;
  EXPECT_EQ(tasks.inFlight(), 0U);
  tasks.waitUntilIdle();
}

TEST(ToolTasksTest, CountsTheCallsInFlight) {
  std::latch latch(1);
  ToolTasks tasks;
  tasks.start(waitOnThread(latch, tasks.count()));
  tasks.start(waitOnThread(latch, tasks.count()));
  EXPECT_EQ(tasks.inFlight(), 2U);
  latch.count_down();
  tasks.waitUntilIdle();
  EXPECT_EQ(tasks.inFlight(), 0U);
}

TEST(ToolTasksTest, CountsACallThatIsHandedOnOnce) {
  ToolTasks tasks;
  {
    ToolTasks::InFlight first = tasks.count();
    const ToolTasks::InFlight second = std::move(first);
    EXPECT_EQ(tasks.inFlight(), 1U);
  }
  EXPECT_EQ(tasks.inFlight(), 0U);
}

// Fails when fewer threads than four take tasks.
TEST(ToolTasksTest, FourTasksMayWorkAtOnce) {
  std::atomic<int> atWork = 0;
  std::latch latch(1);
  ToolTasks tasks;
  const auto work = [&](ToolTasks::InFlight) -> Task<void> {
    ++atWork;
    latch.wait();
    co_return;
  };
  for (int i = 0; i < 8; ++i) tasks.start(work(tasks.count()));
  const auto deadline = std::chrono::steady_clock::now() + testTimeout;
  while (atWork < 4 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  EXPECT_EQ(atWork, 4);
  latch.count_down();
  tasks.waitUntilIdle();
  EXPECT_EQ(atWork, 8);
}

TEST(ToolTasksTest, LetsAThousandTasksWaitAtOnce) {
  std::atomic<int> count = 0;
  const auto start = std::chrono::steady_clock::now();
  {
    ToolTasks tasks;
    for (int i = 0; i < 1000; ++i) {
      tasks.start(sleepThenCount(std::chrono::milliseconds(100), count, tasks.count()));
    }
    tasks.waitUntilIdle();
  }
  EXPECT_EQ(count, 1000);
  // One after another they would take a hundred seconds, on the threads of the pool twenty-five.
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(ToolTasksTest, WaitsForItsTasksAtItsEnd) {
  std::atomic<int> count = 0;
  {
    ToolTasks tasks;
    for (int i = 0; i < 10; ++i) {
      tasks.start(sleepThenCount(std::chrono::milliseconds(20), count, tasks.count()));
    }
  }
  EXPECT_EQ(count, 10);
}

thread_local int tasksOnThisStack = 0;

Task<void> startOthers(ToolTasks& tasks, int remaining, int& deepest, ToolTasks::InFlight) {
  ++tasksOnThisStack;
  deepest = std::max(deepest, tasksOnThisStack);
  if (remaining > 0) tasks.start(startOthers(tasks, remaining - 1, deepest, tasks.count()));
  --tasksOnThisStack;
  co_return;
}

// Fails when a task that is started by another begins on top of it.
TEST(ToolTasksTest, StartsNoTaskInsideAnother) {
  int deepest = 0;
  ToolTasks tasks;
  tasks.start(startOthers(tasks, 100, deepest, tasks.count()));
  tasks.waitUntilIdle();
  EXPECT_EQ(deepest, 1);
}

TEST(ToolTasksTest, CanBecomeIdleAgainAndAgain) {
  std::atomic<int> count = 0;
  ToolTasks tasks;
  for (int i = 1; i <= 200; ++i) {
    tasks.start(sleepThenCount(std::chrono::milliseconds(0), count, tasks.count()));
    tasks.waitUntilIdle();
    ASSERT_EQ(count, i);
    ASSERT_EQ(tasks.inFlight(), 0U);
  }
}

using namespace std::chrono_literals;

TEST(ClockTest, CountsWholeSecondsTowardZero) {
  const FileTime now{1'000'000'000s};
  EXPECT_EQ(secondsBetween(now - 90'999'999'999ns, now), 90);
  EXPECT_EQ(secondsBetween(now - 91s, now), 91);
  EXPECT_EQ(secondsBetween(now, now), 0);
  EXPECT_EQ(secondsBetween(now + 999'999'999ns, now), 0);
  EXPECT_EQ(secondsBetween(now + 1500ms, now), -1);
}

TEST(ClockTest, CutsDatesToWholeSeconds) {
  FakeClock clock;
  const Date start = clock.date();
  clock.pass(999ms);
  EXPECT_EQ(clock.date(), start);
  clock.pass(1ms);
  EXPECT_EQ(clock.date(), start + 1s);
}

TEST(ClockTest, TakesTheSystemsTime) {
  const SystemClock clock;
  EXPECT_LT(std::chrono::abs(clock.now() - std::chrono::system_clock::now()), 5s);
  const auto first = clock.elapsed();
  EXPECT_LE(first, clock.elapsed());
}

TEST(ClockTest, SleepsAtLeastAsLongAsAsked) {
  const SystemClock clock;
  const auto start = clock.elapsed();
  runTask(clock.sleepFor(20ms));
  EXPECT_GE(clock.elapsed() - start, 20ms);
}

TEST(ClockTest, EndsSleepsTogetherThatAreDueAtAboutTheSameTime) {
  const Clock::Elapsed due{1000s};
  EXPECT_EQ(SystemClock::endOfSleep(due), due);
  EXPECT_EQ(SystemClock::endOfSleep(due + 1ns), due + 10ms);
  EXPECT_EQ(SystemClock::endOfSleep(due + 10ms), due + 10ms);
  EXPECT_EQ(SystemClock::endOfSleep(due + 10ms + 1ns), due + 20ms);
}

}  // namespace
}  // namespace corvane::testing
