#pragma once

#include <unistd.h>

#include <filesystem>

#ifdef __linux__
#include <sys/fsuid.h>
#endif

namespace corvane::testing {

/// Lets the calling thread use files as an account without special rights would, which matters to
/// tests of the superuser only. The home is that account's own meanwhile.
class OrdinaryUser {
 public:
  explicit OrdinaryUser(const std::filesystem::path& home) {
#ifdef __linux__
    constexpr uid_t nobody = 65534;
    if (::geteuid() != 0 || ::chown(home.c_str(), nobody, nobody) != 0) return;
    ::setfsuid(nobody);
    changed = true;
#endif
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() {
#ifdef __linux__
    if (changed) ::setfsuid(0);
#endif
  }

  /// Whether it is one.
  [[nodiscard]] bool isOrdinary() const { return changed || ::geteuid() != 0; }

 private:
  bool changed = false;
};

}  // namespace corvane::testing
