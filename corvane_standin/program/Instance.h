#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>

namespace corvane::standin {

/// Makes an instance the only one of its home. The lock is not given back before the process ends,
/// so that whoever waits for it finds no process left.
class InstanceLock {
 public:
  /// Takes the lock on `file` and writes the process id into it; nothing when another instance has
  /// it. Throws FileError when the file cannot be made.
  [[nodiscard]] static std::optional<InstanceLock> tryAcquire(const std::filesystem::path& file);

  /// Whether the locked file is still where it was, that is, whether the home still stands.
  [[nodiscard]] bool inPlace() const;

 private:
  InstanceLock(std::filesystem::path file, int descriptor)
      : file(std::move(file)), descriptor(descriptor) {}

  std::filesystem::path file;
  int descriptor;
};

/// Asks the instance that holds the lock on `file` to stop and waits until it is gone. True as well
/// when there is none; false when it is still there after `timeout`.
/// Throws FileError when it may not be asked.
[[nodiscard]] bool quitInstance(const std::filesystem::path& file,
                                std::chrono::milliseconds timeout);

/// Holds back the signals that ask a program to stop, so that the loop can look for them where it
/// suits it. For a program with one thread.
class StopSignals {
 public:
  StopSignals();

  /// Whether SIGTERM, SIGINT or SIGHUP has arrived.
  [[nodiscard]] bool arrived() const;

 private:
  sigset_t signals{};
};

}  // namespace corvane::standin
