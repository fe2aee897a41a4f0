#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace corvane {

/// The pattern of leader and followers: one of a few threads leads, and what comes up it does
/// itself. Only when that keeps it busy for more than a moment a follower takes the lead; the
/// thread follows once it is done. So what is soon done costs no hop between threads, and what is
/// not holds up nobody. Threads start as they are needed.
class Leadership {
 public:
  /// How many threads there may be, with that which calls run().
  static constexpr std::size_t mostThreads = 3;
  /// How long a busy leader keeps the lead at most: twice this.
  static constexpr std::chrono::milliseconds patience{1};

  /// `lead` is run by whichever thread leads. It returns when it has lost the lead or has ended it.
  explicit Leadership(std::function<void()> lead) : lead(std::move(lead)) {}

  /// Returns when the lead has ended and all threads are done.
  void run();

  /// Something that may keep the leader busy.
  using Absence = std::uint64_t;
  /// Called by the leader: from now on the lead may be taken from it. Nothing when there is nobody
  /// who could; then it must not let anything keep it busy.
  [[nodiscard]] std::optional<Absence> beginAbsence();
  /// Called by the same thread when it is done: whether it still leads.
  [[nodiscard]] bool endAbsence(Absence absence);
  /// Called by the leader: nobody leads any more.
  void end();

 private:
  void leadAndFollow();
  /// Returns true when this thread leads from now on, false when nobody does any more.
  [[nodiscard]] bool follow();
  [[nodiscard]] bool startFollower();

  std::function<void()> lead;
  std::mutex mutex;
  std::condition_variable changed;
  /// The last absence, and whether it lasts and the lead has not been taken.
  Absence lastAbsence = 0;
  bool isAbsent = false;
  std::size_t following = 0;
  /// Followers who do not look after the leader any more, as nothing has come up for a while.
  std::size_t asleep = 0;
  bool hasEnded = false;
  /// Joined at the end of run(); no std::jthread, which not every standard library has.
  std::vector<std::thread> others;
};

}  // namespace corvane
