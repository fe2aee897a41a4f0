#pragma once

#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "CorvaneCore/paths/AgentPaths.h"

namespace corvane::testing {

/// The variables, as "NAME=value", that give a program a home: the second one counts on macOS.
[[nodiscard]] inline std::vector<std::string> homeVariables(const std::filesystem::path& home) {
  return {"HOME=" + home.string(), "CFFIXED_USER_HOME=" + home.string()};
}

/// A private, empty home folder for one test, removed with everything in it at the end of its life.
class TemporaryHome {
 public:
  TemporaryHome() {
    std::string pattern = (std::filesystem::temp_directory_path() / "corvane-home-XXXXXX").string();
    if (!::mkdtemp(pattern.data())) {
      throw std::system_error(errno, std::generic_category(), "mkdtemp");
    }
    // Canonical, so that paths built from it compare equal to paths that the system reports.
    home = std::filesystem::canonical(pattern);
  }
  TemporaryHome(const TemporaryHome&) = delete;
  TemporaryHome& operator=(const TemporaryHome&) = delete;
  ~TemporaryHome() {
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return home; }

  /// The shared folders under this home, none of which exists yet, as they are called on Linux.
  [[nodiscard]] AgentPaths paths() const {
    return AgentPaths(UserFolders{.applicationSupport = home / ".local" / "share", .home = home});
  }

  /// The shared folders that a program finds whose environment has
  /// homeVariables(path()) and no XDG_DATA_HOME.
  [[nodiscard]] AgentPaths programPaths() const {
#ifdef __APPLE__
    const auto support = home / "Library" / "Application Support";
    return AgentPaths(UserFolders{.applicationSupport = support, .home = home});
#else
    return paths();
#endif
  }

  /// Every file and folder under this home, relative to it and sorted.
  [[nodiscard]] std::vector<std::string> entries() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
      found.push_back(entry.path().lexically_relative(home).generic_string());
    }
    std::sort(found.begin(), found.end());
    return found;
  }

 private:
  std::filesystem::path home;
};

}  // namespace corvane::testing
