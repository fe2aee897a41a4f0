#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "corvanectl/system/ChildProcess.h"
#include "corvanectl/system/Interruption.h"

namespace corvane::ctl {

/// The server could not be started, ended early, or said something the protocol does not allow.
class ProtocolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The server's output has ended. The description is how: "the server ended with exit status 3".
class ServerEnded : public ProtocolError {
 public:
  using ProtocolError::ProtocolError;
};

/// The server program to start: the `given` one, else the one beside this program (`ownPath`), else
/// the first in the folders of `searchPath`, a colon-separated list. Throws ProtocolError when
/// there is none. A given path is not checked.
[[nodiscard]] std::filesystem::path locateServer(const std::optional<std::filesystem::path>& given,
                                                 const std::filesystem::path& ownPath,
                                                 std::string_view searchPath);

/// Cuts a stream of bytes into lines. Each byte is looked at once, however the bytes arrive.
class LineBuffer {
 public:
  void append(std::string_view bytes);

  /// The next whole line, without its line feed; nothing until one is complete.
  [[nodiscard]] std::optional<std::string> takeLine();

  /// Takes the bytes after the last line feed as if one followed them; nothing when there are none.
  [[nodiscard]] std::optional<std::string> takeRest();

  /// How many bytes are held.
  [[nodiscard]] std::size_t size() const { return held.size() - start; }

 private:
  std::string held;
  /// Where the next line begins; what lies before it has been taken.
  std::size_t start = 0;
  /// No line feed lies between `start` and here.
  std::size_t searched = 0;
};

/// What the server writes to its standard error. The last lines are kept, in case the server fails.
class ServerLog {
 public:
  using Forward = std::function<void(std::string_view line)>;

  /// `forward`, if there is one, is called with each line as it arrives.
  explicit ServerLog(Forward forward = {}) : forward(std::move(forward)) {}

  void append(std::string_view bytes);
  /// Takes what is left as a last line.
  void finish();

  /// At most `linesKept` lines, oldest first; long ones are cut.
  [[nodiscard]] const std::deque<std::string>& lastLines() const { return kept; }

  static constexpr std::size_t linesKept = 10;

 private:
  void take(std::string line);

  Forward forward;
  LineBuffer buffer;
  std::deque<std::string> kept;
};

/// A running server and the lines that go to and fro. Everything is done by the calling thread
/// while it waits for a line, so neither side can block the other. At the end of the object's life
/// the server has ended too.
class ServerProcess {
 public:
  /// Far above any answer that makes sense; something endless ends here.
  static constexpr std::size_t longestAnswer = std::size_t{512} << 20;

  /// Starts the server. `log` and `interruption` outlive it. Throws ProtocolError.
  ServerProcess(const std::filesystem::path& program, ServerLog& log, Interruption& interruption,
                std::size_t longestLine = longestAnswer);
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ~ServerProcess();

  /// Adds a line to what goes to the server; `line` holds no line feed. It leaves during later
  /// calls of readLine. Never waits, never fails.
  void send(std::string_view line);

  /// The next line of the server's standard output; nothing when `deadline` comes first. Throws
  /// ServerEnded when no more lines will come, ProtocolError for one of absurd length, Interrupted.
  [[nodiscard]] std::optional<std::string> readLine(Deadline deadline);

 private:
  bool exchange(Deadline deadline);
  void writeOutgoing();
  void readOutput();
  void readErrors();
  [[noreturn]] void reportEnd();
  void close();
  bool waitForEnd(std::chrono::milliseconds timeout);

  ServerLog& log;
  Interruption& interruption;
  std::size_t longestLine;
  ChildProcess child;
  std::string outgoing;
  /// How much of `outgoing` has left.
  std::size_t written = 0;
  LineBuffer incoming;
};

}  // namespace corvane::ctl
