#pragma once

#include <poll.h>
#include <signal.h>

#include <array>
#include <chrono>
#include <span>

#include "CorvaneCore/files/Files.h"

namespace corvane::ctl {

/// The moment at which a wait gives up.
using Deadline = std::chrono::steady_clock::time_point;
using Seconds = std::chrono::duration<double>;

inline constexpr Deadline never = Deadline::max();

/// The moment `time` from now. `time` is at most some years.
[[nodiscard]] inline Deadline after(Seconds time) {
  return std::chrono::steady_clock::now() +
         std::chrono::duration_cast<std::chrono::steady_clock::duration>(time);
}

[[nodiscard]] inline bool hasPassed(Deadline deadline) {
  return std::chrono::steady_clock::now() >= deadline;
}

/// The user or the system asked the program to end. Not a failure, and so no std::exception.
struct Interrupted {
  int signal;
};

/// Turns SIGINT, SIGTERM and SIGHUP into something that can be waited for, and ignores SIGPIPE.
/// Every wait of the program goes through `wait`, so each one ends at its deadline or at a signal.
/// One object at a time; it gives the signals back at the end of its life. Used by one thread.
class Interruption {
 public:
  /// Throws std::system_error when the system has no descriptors left.
  Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption();

  /// Waits until one of `files` is ready (poll(2); negative descriptors are passed over) and says
  /// so in their `revents`; false when the deadline came first. Throws Interrupted, once for each
  /// signal.
  bool wait(std::span<pollfd> files, Deadline deadline);

  /// Whether a wait has been interrupted.
  [[nodiscard]] bool happened() const { return interrupted; }

 private:
  static constexpr std::array watchedSignals{SIGINT, SIGTERM, SIGHUP};

  FileDescriptor readEnd;
  FileDescriptor writeEnd;
  std::array<struct sigaction, watchedSignals.size()> formerActions{};
  struct sigaction formerPipeAction{};
  bool interrupted = false;
};

}  // namespace corvane::ctl
