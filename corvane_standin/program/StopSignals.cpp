#include "corvane_standin/program/StopSignals.h"

namespace corvane::standin {

namespace {

constexpr int stopSignals[] = {SIGTERM, SIGINT, SIGHUP};

}  // namespace

StopSignals::StopSignals() {
  // A parent that ignores SIGTERM would otherwise hand that on, and nothing could stop us.
  std::signal(SIGTERM, SIG_DFL);
  sigemptyset(&signals);
  for (const int signal : stopSignals) sigaddset(&signals, signal);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

bool StopSignals::arrived() const {
  sigset_t pending{};
  sigpending(&pending);
  for (const int signal : stopSignals) {
    if (sigismember(&pending, signal) == 1) return true;
  }
  return false;
}

}  // namespace corvane::standin
