#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane::ctl {

/// The two ends of a pipe; programs started later do not inherit them.
struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

/// Throws std::system_error.
[[nodiscard]] Pipe makePipe();

/// Lets reads and writes return at once instead of waiting.
void setNonBlocking(const FileDescriptor& file);

/// The file that this program was started from, links followed; empty when the system does not
/// tell. One implementation per platform.
[[nodiscard]] std::filesystem::path executablePath();

/// The folders in which this user's programs are looked for: PATH, empty when it is not set.
[[nodiscard]] std::string_view searchPath();

/// Whether `path` is a file that may be started.
[[nodiscard]] bool isProgram(const std::filesystem::path& path);

/// The first program called `name` in the folders of `searchPath`, a colon-separated list; nothing
/// when none of them has it. Empty names of folders are passed over.
[[nodiscard]] std::optional<std::filesystem::path> findProgram(std::string_view name,
                                                               std::string_view searchPath);

/// A path to `program` that outlasts its next version: the name on `searchPath` that leads to it,
/// else the path itself.
[[nodiscard]] std::filesystem::path lastingPath(const std::filesystem::path& program,
                                                std::string_view searchPath);

/// A program that was started. One that still runs at the end of the object's life is killed; no
/// zombie is left.
class ChildProcess {
 public:
  /// Starts a program with pipes for its three standard streams, in a process group of its own:
  /// what Ctrl-C sends to this program's group does not reach it, so its end is orderly. Throws
  /// std::system_error when it cannot be started.
  [[nodiscard]] static ChildProcess startPiped(const std::filesystem::path& program);

  /// Starts a program that writes to `output` and has neither input nor errors to show. It stays in
  /// this program's group, so that it may ask the terminal in front of it. Throws std::system_error
  /// when it cannot be started.
  [[nodiscard]] static ChildProcess startShowing(const std::filesystem::path& program,
                                                 std::vector<std::string> arguments, int output);

  /// Starts a program in a session of its own, fit to go on when this one has ended. It has neither
  /// input nor output; its errors go where this program's do or, where a file is given, replace
  /// what is in there. Throws std::system_error when it cannot be started.
  [[nodiscard]] static ChildProcess startAlone(
      const std::filesystem::path& program, std::vector<std::string> arguments,
      const std::optional<std::filesystem::path>& errors = std::nullopt);

  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;
  ~ChildProcess();

  /// Whether the program has ended, without waiting for it.
  [[nodiscard]] bool hasEnded();
  /// Whether it ended by itself with status 0; only for one that has ended.
  [[nodiscard]] bool endedWell() const { return endStatus == 0; }
  /// Lets the program go on by itself.
  void letGo() { id = 0; }
  /// Sends a signal, to the program itself and not to what it may have started.
  void signal(int number) const;
  /// Whether a signal ended it; only for one that has ended.
  [[nodiscard]] bool endedBySignal() const;
  /// "ended with exit status 3" or "was ended by signal 11 (Segmentation fault)"; only for one that
  /// has ended.
  [[nodiscard]] std::string ending() const;

  /// This side's ends of the pipes, if there are any; none of them makes the caller wait.
  FileDescriptor input;
  FileDescriptor output;
  FileDescriptor errors;

 private:
  explicit ChildProcess(pid_t id) : id(id) {}

  pid_t id;
  /// As waitpid(2) gives it.
  std::optional<int> endStatus;
};

}  // namespace corvane::ctl
