#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace corvane {

/// The pattern of leader and followers, for two threads: one of them leads, and when something
/// keeps it busy it hands the lead to the other and follows once it is done. So what the leader
/// takes up is begun at once, by a thread that is awake, and yet nobody waits for its end. The
/// second thread starts with the first hand-over.
class Leadership {
 public:
  /// `lead` is run by whichever thread leads. It returns as soon as it has handed the lead over and
  /// done what kept it busy, or has ended it.
  explicit Leadership(std::function<void()> lead) : lead(std::move(lead)) {}

  /// Returns when the lead has ended and both threads are done.
  void run();

  /// Called by the leader: true when the other thread leads from now on. False when that one is
  /// busy itself, or cannot be started.
  [[nodiscard]] bool handOver();
  /// Called by the leader: nobody leads any more.
  void end();

 private:
  void leadAndFollow();

  std::function<void()> lead;
  std::mutex mutex;
  std::condition_variable changed;
  bool followerWaits = false;
  bool isVacant = false;
  bool hasEnded = false;
  /// Joined at the end of run(); no std::jthread, which not every standard library has.
  std::thread other;
};

}  // namespace corvane
