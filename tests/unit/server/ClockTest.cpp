#include "corvane_mcp/server/Clock.h"

#include <gtest/gtest.h>

#include "tests/support/ToolBench.h"

namespace corvane::testing {
namespace {

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
