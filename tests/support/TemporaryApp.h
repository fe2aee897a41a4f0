#pragma once

#include <sys/types.h>

#include <filesystem>

namespace corvane::testing {

/// An app bundle whose program runs and does nothing, for one test. Whoever started it, at the end
/// of this object's life it is gone.
class TemporaryApp {
 public:
  /// Lays the bundle out; nothing runs yet.
  explicit TemporaryApp(std::filesystem::path bundle);
  TemporaryApp(const TemporaryApp&) = delete;
  TemporaryApp& operator=(const TemporaryApp&) = delete;
  /// Ends the app and waits until it is gone.
  ~TemporaryApp();

  [[nodiscard]] const std::filesystem::path& bundle() const { return folder; }
  [[nodiscard]] std::filesystem::path program() const;
  /// Starts the app as a child of this process, as if the user had opened it.
  void open();
  /// The process id of the app that somebody has started; waits until it is up.
  [[nodiscard]] pid_t waitUntilUp() const;

 private:
  std::filesystem::path folder;
  pid_t child = -1;
};

/// Returns when no app runs on this machine, as tests that have just ended may have left one dying.
void waitUntilNoAppRuns();

}  // namespace corvane::testing
