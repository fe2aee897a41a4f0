#pragma once

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace corvane {

/// Owns one file descriptor, or none, and closes it at the end of its life. One that was moved from
/// owns none.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor(std::exchange(other.descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    const int taken = std::exchange(other.descriptor, -1);
    close();
    descriptor = taken;
    return *this;
  }
  ~FileDescriptor() { close(); }

  [[nodiscard]] bool isOpen() const { return descriptor >= 0; }
  [[nodiscard]] int get() const { return descriptor; }
  /// Gives the descriptor up without closing it.
  [[nodiscard]] int release() { return std::exchange(descriptor, -1); }
  /// Closes now; false when the system reports an error for what was written.
  bool close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0; }

 private:
  int descriptor = -1;
};

/// A file operation failed. The description is one line: what was tried, on which file, and why it
/// failed, e.g. "could not write /home/me/x.json: No space left on device".
class FileError : public std::system_error {
 public:
  FileError(std::string_view operation, const std::filesystem::path& file, std::error_code code);

  [[nodiscard]] const char* what() const noexcept override { return description.c_str(); }

 private:
  std::string description;
};

/// `path` as text for people and JSON: valid UTF-8, whatever its bytes.
[[nodiscard]] std::string displayPath(const std::filesystem::path& path);

/// When a file was last changed, on the system clock.
using FileTime = std::chrono::sys_time<std::chrono::nanoseconds>;

/// What tells one version of a file from the next.
struct FileStamp {
  /// Nothing for a time before 1843 or after 2261: beyond these a FileTime, or its difference to a
  /// present one, could be wrong.
  std::optional<FileTime> modifiedAt;
  std::uintmax_t size = 0;

  [[nodiscard]] static FileStamp of(const struct stat& status);
  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// No file that either side writes comes near this size; a larger one is not read.
inline constexpr std::size_t largestFile = std::size_t{64} << 20;

/// The stamp of the file at `path`, links followed; nothing when there is none or it cannot be
/// seen.
[[nodiscard]] std::optional<FileStamp> readStamp(const std::filesystem::path& path);

/// The whole contents of a regular file. Never waits on a FIFO or device put in a file's place.
/// The text has the capacity to grow by `spare` bytes. Throws FileError, also for other kinds of
/// file and for one larger than `limit` bytes.
[[nodiscard]] std::string readFile(const std::filesystem::path& path,
                                   std::size_t limit = largestFile, std::size_t spare = 0);

/// How readFile opens a file. Without O_NONBLOCK opening a FIFO would wait for its writer.
inline constexpr int openForReading = O_RDONLY | O_CLOEXEC | O_NONBLOCK;

/// What readFile does with a file that was opened so, or could not be: `buffer` begins with what
/// was read, `length` bytes, and keeps what memory it has. Tells what readFile would throw.
[[nodiscard]] std::error_code readWhole(const FileDescriptor& file, std::string& buffer,
                                        std::size_t& length, std::size_t limit = largestFile,
                                        std::size_t spare = 0);

/// Who may use a file that is made, and the folders that are made for it: the permissions that they
/// have at most.
enum class Access : mode_t {
  /// The user alone. Requests carry passwords, and results what was on a screen.
  userOnly = S_IRWXU,
  /// Whomever the umask lets.
  byUmask = S_IRWXU | S_IRWXG | S_IRWXO,
};

/// The mode that a file is opened with to be made.
[[nodiscard]] constexpr mode_t fileMode(Access access) {
  constexpr mode_t notExecutable = 0666;
  return notExecutable & static_cast<mode_t>(access);
}

/// Writes the file whole or not at all: into a temporary file beside it, which is then moved into
/// place. Missing folders are created first. On failure the file is as it was, nothing is left
/// behind, and a FileError is thrown.
void writeFileWhole(const std::filesystem::path& path, std::string_view contents,
                    Access access = Access::userOnly);

/// Makes sure that a file can be written at `path` with `writeFileWhole`, and makes the folders
/// that are missing. Throws the FileError that writing would, also where something stands that is
/// no regular file and should not be replaced by one.
void ensureWritable(const std::filesystem::path& path, Access access = Access::userOnly);

/// Makes a folder with all its missing parents exist, for the user alone. A folder of the user's
/// own that is there and open to others is closed to them, with what it holds. Whatever else exists
/// there is left alone; a failure is ignored, as the write that needs the folder reports its own.
void ensureDirectoryExists(const std::filesystem::path& directory);

/// Whether something exists at `path`, links followed.
[[nodiscard]] bool fileExists(const std::filesystem::path& path);

}  // namespace corvane
