#include "CorvaneCore/files/Folder.h"

#include <fcntl.h>

#include <algorithm>

namespace corvane {

namespace fs = std::filesystem;

namespace {

/// Whether people do not get to see an entry of `folder` for a flag that it carries, as `~/Library`
/// does on macOS.
bool isFlaggedHidden([[maybe_unused]] int folder, [[maybe_unused]] const char* name) {
#ifdef __APPLE__
  struct stat status{};
  return ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         (status.st_flags & UF_HIDDEN) != 0;
#else
  return false;
#endif
}

}  // namespace

Folder::Folder(const fs::path& path, Links links) {
  constexpr int reading = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;
  FileDescriptor file(
      ::open(path.c_str(), links == Links::refused ? reading | O_NOFOLLOW : reading));
  if (!file.isOpen()) return;
  stream.reset(::fdopendir(file.get()));
  // The stream closes it from now on.
  if (stream) (void)file.release();
}

std::optional<Folder::Entry> Folder::next() {
  if (!stream) return std::nullopt;
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name.starts_with('.')) continue;
    if (isFlaggedHidden(::dirfd(stream.get()), entry->d_name)) continue;
    return Entry{name, entry->d_type == DT_DIR || entry->d_type == DT_UNKNOWN};
  }
  return std::nullopt;
}

std::optional<FileStamp> Folder::stampOf(const Entry& entry) const {
  struct stat status{};
  if (::fstatat(::dirfd(stream.get()), entry.name.data(), &status, 0) != 0) return std::nullopt;
  return FileStamp::of(status);
}

std::optional<std::string_view> Folder::contentsOf(const Entry& entry) {
  const FileDescriptor file(::openat(::dirfd(stream.get()), entry.name.data(), openForReading));
  std::size_t length = 0;
  if (readWhole(file, buffer, length)) return std::nullopt;
  return std::string_view(buffer).substr(0, length);
}

std::vector<fs::path> listVisible(const fs::path& directory) {
  std::vector<fs::path> entries;
  Folder folder(directory);
  while (const auto entry = folder.next()) entries.push_back(directory / entry->name);
  std::sort(entries.begin(), entries.end());
  return entries;
}

}  // namespace corvane
