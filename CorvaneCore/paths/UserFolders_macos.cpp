#include <pwd.h>
#include <sysdir.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <stdexcept>
#include <string>

#include "CorvaneCore/paths/UserFolders.h"

namespace corvane {

UserFolders UserFolders::current() {
  const passwd* account = ::getpwuid(::getuid());
  if (!account || !account->pw_dir) throw std::runtime_error("this user has no home folder");
  UserFolders folders;
  folders.home = account->pw_dir;

  std::array<char, PATH_MAX> found{};
  auto search = sysdir_start_search_path_enumeration(SYSDIR_DIRECTORY_APPLICATION_SUPPORT,
                                                     SYSDIR_DOMAIN_MASK_USER);
  if (sysdir_get_next_search_path_enumeration(search, found.data()) == 0) {
    throw std::runtime_error("this user has no Application Support folder");
  }
  const std::string path = found.data();
  folders.applicationSupport =
      path.starts_with("~/") ? folders.home / path.substr(2) : std::filesystem::path(path);
  return folders;
}

}  // namespace corvane
