#include "CorvaneCore/files/Files.h"

#include <sys/stat.h>

#include <cerrno>

#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/files/TemporaryFile.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

FileError::FileError(std::string_view operation, const std::filesystem::path& file,
                     std::error_code code)
    : std::system_error(code) {
  description.append("could not ").append(operation).append(" ");
  description.append(escapeControls(displayPath(file))).append(": ").append(code.message());
}

std::string displayPath(const std::filesystem::path& path) {
  return toValidUtf8(path.native());
}

namespace {

namespace fs = std::filesystem;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

std::optional<FileTime> modificationTime(const struct stat& status) {
#ifdef __APPLE__
  const timespec& time = status.st_mtimespec;
#else
  const timespec& time = status.st_mtim;
#endif
  constexpr std::int64_t earliest = -4'000'000'000;
  constexpr std::int64_t latest = 9'200'000'000;
  if (time.tv_sec < earliest || time.tv_sec > latest) return std::nullopt;
  return FileTime(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

/// Makes a folder with all its missing parents; tells what stands in the way.
std::error_code makeFolders(const fs::path& folder, Access access) {
  std::error_code trouble;
  if (folder.empty() || fs::is_directory(folder, trouble)) return {};
  trouble.clear();
  fs::path next;
  for (const auto& name : folder) {
    next /= name;
    if (::mkdir(next.c_str(), static_cast<mode_t>(access)) == 0 || errno == EEXIST) {
      trouble.clear();
    } else if (!trouble) {
      trouble = lastError();
    }
  }
  return trouble;
}

/// Takes from all others what they may do with `path`, when it is the user's own, and then with
/// what it holds. What lies in a folder that was closed before is out of their reach.
void closeToOthers(const fs::path& path) {
  constexpr mode_t permissions = 07777;
  constexpr mode_t ofOthers = S_IRWXG | S_IRWXO;
  std::vector<fs::path> left{path};
  while (!left.empty()) {
    const fs::path next = std::move(left.back());
    left.pop_back();
    // What is asked about is what is changed, and never what a link leads to.
    const FileDescriptor file(::open(next.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status{};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) continue;
    if (status.st_uid != ::geteuid()) continue;
    if ((status.st_mode & ofOthers) == 0) continue;
    if (::fchmod(file.get(), status.st_mode & permissions & ~ofOthers) != 0) continue;
    const auto inside = listVisible(next);
    left.insert(left.end(), inside.begin(), inside.end());
  }
}

}  // namespace

FileStamp FileStamp::of(const struct stat& status) {
  return {modificationTime(status), static_cast<std::uintmax_t>(status.st_size)};
}

std::optional<FileStamp> readStamp(const fs::path& path) {
  struct stat status{};
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileStamp::of(status);
}

std::error_code readWhole(const FileDescriptor& file, std::string& buffer, std::size_t& length,
                          std::size_t limit, std::size_t spare) {
  struct stat status{};
  if (!file.isOpen() || ::fstat(file.get(), &status) != 0) return lastError();
  if (S_ISDIR(status.st_mode)) return std::make_error_code(std::errc::is_a_directory);
  if (!S_ISREG(status.st_mode)) return std::make_error_code(std::errc::invalid_argument);
  const auto tooLarge = std::make_error_code(std::errc::file_too_large);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > limit) return tooLarge;
  length = 0;
  // The size is only a hint: the file may grow or shrink while it is read.
  if (buffer.size() <= size) {
    buffer.reserve(size + 1 + spare);
    buffer.resize(size + 1);
  }
  while (true) {
    const ssize_t count = ::read(file.get(), buffer.data() + length, buffer.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return lastError();
    length += static_cast<std::size_t>(count);
    if (count == 0) return {};
    if (length > limit) return tooLarge;
    constexpr std::size_t smallestStep = 4096;
    if (length == buffer.size()) buffer.resize(length + smallestStep);
  }
}

std::string readFile(const fs::path& path, std::size_t limit, std::size_t spare) {
  const FileDescriptor file(::open(path.c_str(), openForReading));
  std::string contents;
  std::size_t length = 0;
  if (const auto error = readWhole(file, contents, length, limit, spare)) {
    throw FileError("read", path, error);
  }
  contents.resize(length);
  return contents;
}

void writeFileWhole(const fs::path& path, std::string_view contents, Access access) {
  if (const auto error = makeFolders(path.parent_path(), access)) {
    throw FileError("write", path, error);
  }
  const auto writeAs = [&](TemporaryFile::Kind kind) {
    TemporaryFile temporary(path, kind, access);
    temporary.write(contents);
    return temporary.moveIntoPlace();
  };
  // A sandbox without /proc gives no names to nameless files.
  if (!writeAs(TemporaryFile::Kind::nameless)) (void)writeAs(TemporaryFile::Kind::named);
}

void ensureWritable(const fs::path& path, Access access) {
  const auto fail = [&path](std::error_code reason) { throw FileError("write", path, reason); };
  if (const auto error = makeFolders(path.parent_path(), access)) fail(error);
  struct stat status{};
  if (::stat(path.c_str(), &status) != 0) {
    if (errno != ENOENT) fail(lastError());
  } else if (S_ISDIR(status.st_mode)) {
    fail(std::make_error_code(std::errc::is_a_directory));
  } else if (!S_ISREG(status.st_mode)) {
    fail(std::make_error_code(std::errc::invalid_argument));
  }
  const TemporaryFile attempt(path, TemporaryFile::Kind::named, access);
}

void ensureDirectoryExists(const fs::path& directory) {
  std::error_code ignored;
  if (fs::is_directory(directory, ignored)) {
    closeToOthers(directory);
  } else {
    ignored = makeFolders(directory, Access::userOnly);
  }
}

bool fileExists(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

}  // namespace corvane
