#pragma once

#include <sys/stat.h>

namespace corvane::testing {

/// Sets this process's umask for a while. Used by one thread.
class Umask {
 public:
  explicit Umask(mode_t mask) : before(::umask(mask)) {}
  Umask(const Umask&) = delete;
  Umask& operator=(const Umask&) = delete;
  ~Umask() { ::umask(before); }

 private:
  mode_t before;
};

}  // namespace corvane::testing
