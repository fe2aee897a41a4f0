#include "corvane_standin/program/StopSignals.h"

#include <gtest/gtest.h>

namespace corvane::standin {
namespace {

/// In a process of its own, as signals held back stay so for the rest of its life.
TEST(StopSignalsDeathTest, SignalsAreSeenAndDoNotEndTheProcess) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EXIT(
        {
          const StopSignals stop;
          if (stop.arrived()) std::_Exit(1);
          std::raise(signal);
          std::_Exit(stop.arrived() ? 0 : 2);
        },
        testing::ExitedWithCode(0), "")
        << signal;
  }
}

}  // namespace
}  // namespace corvane::standin
