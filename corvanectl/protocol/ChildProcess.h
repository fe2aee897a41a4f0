#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// A program started with pipes for its three standard streams, in a process group of its own: what
/// Ctrl-C sends to this program's group does not reach it, so its end is orderly. It must have
/// ended before the object does (see `hasEnded`); no zombie is left then.
struct ChildProcess {
  /// Throws std::system_error when the program cannot be started.
  [[nodiscard]] static ChildProcess start(const std::filesystem::path& program);

  /// Whether the program has ended, without waiting for it.
  [[nodiscard]] bool hasEnded();
  /// Sends a signal, to the program itself and not to what it may have started.
  void signal(int number) const;
  /// "ended with exit status 3" or "was ended by signal 11 (Segmentation fault)"; only for one that
  /// has ended.
  [[nodiscard]] std::string ending() const;

  pid_t id = 0;
  /// Ends of the pipes on this side; none of them makes the caller wait.
  FileDescriptor input;
  FileDescriptor output;
  FileDescriptor errors;
  /// As waitpid(2) gives it.
  std::optional<int> endStatus;
};

}  // namespace corvane
