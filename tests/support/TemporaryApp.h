#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string_view>

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

/// Looks for a running app like a launcher does, but only among processes whose command line names
/// `home`: what else runs on the machine, be it the app of another test, is none of a test's
/// affair.
[[nodiscard]] std::function<bool(std::string_view)> onlyProcessesOf(std::filesystem::path home);

}  // namespace corvane::testing
