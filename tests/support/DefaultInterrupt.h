#pragma once

#include <signal.h>

namespace corvane::testing {

/// While it lives, Ctrl-C has its usual effect on this process and those that it starts, even where
/// a shell has started the tests in the background, which is to say with SIGINT ignored.
class DefaultInterrupt {
 public:
  DefaultInterrupt() : former(::signal(SIGINT, SIG_DFL)) {}
  DefaultInterrupt(const DefaultInterrupt&) = delete;
  DefaultInterrupt& operator=(const DefaultInterrupt&) = delete;
  ~DefaultInterrupt() { ::signal(SIGINT, former); }

 private:
  void (*former)(int);
};

}  // namespace corvane::testing
