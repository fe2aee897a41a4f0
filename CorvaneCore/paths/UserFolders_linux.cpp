#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

/// The variable's value when it is an absolute path; a relative one would mean a different folder
/// for each program that reads it.
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

}  // namespace

UserFolders UserFolders::current() {
  UserFolders folders;
  folders.home = absoluteFromEnvironment("HOME");
  if (folders.home.empty()) folders.home = accountHome();
  folders.applicationSupport = absoluteFromEnvironment("XDG_DATA_HOME");
  if (folders.applicationSupport.empty()) {
    folders.applicationSupport = folders.home / ".local" / "share";
  }
  return folders;
}

}  // namespace corvane
