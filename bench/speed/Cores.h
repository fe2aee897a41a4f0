#pragma once

#include <sched.h>

#include <optional>

namespace corvane::testing {

/// Holds this thread, and whatever it starts, to one core while it lives. Which core a process
/// wakes on is otherwise the scheduler's choice, and waking another core costs several times what
/// answering a ping does.
class OneCore {
 public:
  OneCore() : OneCore(::sched_getcpu()) {}
  explicit OneCore(int core) {
    ::sched_getaffinity(0, sizeof before, &before);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(core, &one);
    ::sched_setaffinity(0, sizeof one, &one);
  }
  OneCore(const OneCore&) = delete;
  OneCore& operator=(const OneCore&) = delete;
  ~OneCore() { ::sched_setaffinity(0, sizeof before, &before); }

  /// A core that this thread may not use now but could before; nothing when there is none.
  [[nodiscard]] std::optional<int> another() const {
    const int own = ::sched_getcpu();
    for (int core = 0; core < CPU_SETSIZE; ++core) {
      if (core != own && CPU_ISSET(core, &before)) return core;
    }
    return std::nullopt;
  }

 private:
  cpu_set_t before{};
};

}  // namespace corvane::testing
