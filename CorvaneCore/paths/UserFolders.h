#pragma once

#include <filesystem>

namespace corvane {

/// Where the platform keeps the current user's files. One implementation per platform.
struct UserFolders {
  std::filesystem::path applicationSupport;
  std::filesystem::path home;

  /// Looks the folders up. Throws std::runtime_error when the user has none, which does not happen
  /// on a normal account.
  [[nodiscard]] static UserFolders current();
};

}  // namespace corvane
