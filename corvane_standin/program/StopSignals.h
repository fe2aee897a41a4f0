#pragma once

#include <csignal>

namespace corvane::standin {

/// Holds back the signals that ask a program to stop, so that the loop can look for them where it
/// suits it. For a program with one thread.
class StopSignals {
 public:
  StopSignals();

  /// Whether SIGTERM, SIGINT or SIGHUP has arrived.
  [[nodiscard]] bool arrived() const;

 private:
  sigset_t signals{};
};

}  // namespace corvane::standin
