#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <queue>
#include <utility>

namespace corvane {

/// Lets calls that write requests do so in the order in which the client sent them, whatever
/// threads they run on: each begins when the one before it has written or has come to its end. May
/// be used from any thread; outlives its turns.
class DispatchOrder {
 public:
  /// A call's turn to write. When it is given up, which its destructor does too, the next begins.
  class Turn {
   public:
    /// The turn of a call that nobody waits for.
    Turn() = default;
    Turn(Turn&& other) noexcept : order(std::exchange(other.order, nullptr)) {}
    Turn& operator=(Turn&& other) noexcept {
      giveUp();
      order = std::exchange(other.order, nullptr);
      return *this;
    }
    ~Turn() { giveUp(); }

    void giveUp() {
      if (auto* given = std::exchange(order, nullptr)) given->passOn();
    }

   private:
    friend class DispatchOrder;
    explicit Turn(DispatchOrder& order) : order(&order) {}

    DispatchOrder* order = nullptr;
  };

  /// The next turn, when nobody has it.
  [[nodiscard]] std::optional<Turn> tryEnter();
  /// Hands the next turn to `begin`, which must not throw: at once when nobody has it, else on the
  /// thread that gives up the one before.
  void enter(std::function<void(Turn)> begin);

 private:
  void passOn();

  std::mutex mutex;
  bool isTaken = false;
  std::queue<std::function<void(Turn)>> waiting;
};

}  // namespace corvane
