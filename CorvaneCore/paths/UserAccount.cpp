#include "CorvaneCore/paths/UserAccount.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace corvane {

namespace fs = std::filesystem;

fs::path absoluteFromEnvironment(const char* variable) {
  const char* value = std::getenv(variable);
  const fs::path path = value ? value : "";
  return path.is_absolute() ? path : fs::path();
}

fs::path accountHome() {
  passwd account{};
  passwd* found = nullptr;
  std::array<char, 16384> buffer;
  ::getpwuid_r(::getuid(), &account, buffer.data(), buffer.size(), &found);
  if (!found || !found->pw_dir) throw std::runtime_error("this user has no home folder");
  return found->pw_dir;
}

}  // namespace corvane
