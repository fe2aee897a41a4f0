#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane::testing {

/// A program that is measured: started over pipes, spoken to in lines, with its standard error
/// leading nowhere. Reads and writes block; a program that ends too early is an error, thrown as
/// std::runtime_error. One that still runs at the end of its object's life is killed.
class Contender {
 public:
  /// How to start it: the program and its arguments, and all of its environment.
  struct Command {
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    /// The only core that it may use, if it is not the scheduler's choice.
    std::optional<int> core = std::nullopt;
  };

  explicit Contender(Command command);
  Contender(const Contender&) = delete;
  Contender& operator=(const Contender&) = delete;
  ~Contender();

  /// When it was started.
  [[nodiscard]] std::chrono::steady_clock::time_point startedAt() const { return started; }

  /// Sends `lines`, each of which ends in a line feed.
  void send(std::string_view lines);
  /// The next line without its line feed; valid until the next call.
  [[nodiscard]] std::string_view readLine();
  /// Sends one line and takes the reply; throws when that holds none of `expected`.
  std::string_view ask(std::string_view line, std::string_view expected);
  /// Opens the conversation as a client does.
  void initialize();

  /// Sends `lines` while taking in whatever comes back, until `replies` lines have come.
  void exchange(std::string_view lines, std::size_t replies);

  /// A figure of its memory in KiB, e.g. "VmHWM".
  [[nodiscard]] std::size_t kilobytes(std::string_view figure) const;
  /// Processor time that all its threads have used so far.
  [[nodiscard]] std::chrono::nanoseconds processorTime() const;

 private:
  void readMore();
  [[noreturn]] void failToTalk(const char* what) const;

  std::string name;
  std::string buffer;
  std::chrono::steady_clock::time_point started;
  pid_t process = -1;
  FileDescriptor input;
  FileDescriptor output;
  std::size_t filled = 0;
  std::size_t taken = 0;
};

}  // namespace corvane::testing
