#pragma once

#include <dirent.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// A folder that is read entry by entry, in no order, at the price of the system calls alone. What
/// is hidden is passed over. One that is missing or cannot be read has no entries.
class Folder {
 public:
  /// What becomes of a link in the folder's own place.
  enum class Links { followed, refused };

  explicit Folder(const std::filesystem::path& path, Links links = Links::followed);

  struct Entry {
    /// Ends with a zero byte; valid until the next call.
    std::string_view name;
    /// Whether it is a folder, links not followed. Some file systems do not tell, and then it may
    /// be one.
    bool mayBeFolder = false;
  };

  /// The next entry; nothing at the end.
  [[nodiscard]] std::optional<Entry> next();

  /// The stamp of an entry, as readStamp has it.
  [[nodiscard]] std::optional<FileStamp> stampOf(const Entry& entry) const;
  /// The contents of an entry, valid until the next call; nothing when readFile would throw.
  [[nodiscard]] std::optional<std::string_view> contentsOf(const Entry& entry);

 private:
  struct Close {
    void operator()(DIR* stream) const { ::closedir(stream); }
  };

  std::unique_ptr<DIR, Close> stream;
  std::string buffer;
};

/// The entries of a folder that are not hidden, sorted by name; empty when the folder is missing or
/// cannot be listed.
[[nodiscard]] std::vector<std::filesystem::path> listVisible(
    const std::filesystem::path& directory);

}  // namespace corvane
