#pragma once

#include <sched.h>

namespace corvane::testing {

/// While it lives, this thread and whatever it starts share one core. Which core a process wakes on
/// is otherwise the scheduler's choice, and waking another core costs several times what answering
/// a ping does.
class OneCore {
 public:
  OneCore() {
    ::sched_getaffinity(0, sizeof before, &before);
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(::sched_getcpu(), &one);
    ::sched_setaffinity(0, sizeof one, &one);
  }
  OneCore(const OneCore&) = delete;
  OneCore& operator=(const OneCore&) = delete;
  ~OneCore() { ::sched_setaffinity(0, sizeof before, &before); }

 private:
  cpu_set_t before{};
};

}  // namespace corvane::testing
