#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane::testing {

/// One server under test, started in a private home, and the far ends of its standard streams.
/// While it waits for anything it takes in what the server says on both outputs, so that the server
/// never waits for the test. A wait that lasts too long throws std::runtime_error. A server that
/// still runs at the end of its object's life is killed.
class ServerProcess {
 public:
  struct Setup {
    std::filesystem::path program;
    std::filesystem::path home;
    /// More of its environment, as NAME=value.
    std::vector<std::string> environment{};
    /// Given to the server as its streams; where there is none, it gets a pipe from here.
    FileDescriptor input{};
    FileDescriptor output{};
    FileDescriptor errors{};
    /// Streams that the server is started without.
    std::vector<int> closedStreams{};
    /// Signals that the server is started to ignore.
    std::vector<int> ignoredSignals{};
    /// False when nobody ever reads what it says on standard error.
    bool readsErrors = true;
    std::optional<mode_t> umask{};
    /// How large, in bytes, a file that it writes may get.
    std::optional<std::uint64_t> fileSizeLimit{};
  };

  explicit ServerProcess(Setup setup);
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ~ServerProcess();

  [[nodiscard]] pid_t id() const { return process; }

  /// Sends these bytes. Throws std::system_error when the server has gone as a reader.
  void send(std::string_view bytes);
  /// Sends `line` and a line feed.
  void sendLine(std::string_view line);
  /// The same for a server that may have ended meanwhile: false when nobody reads any more.
  [[nodiscard]] bool offerLine(std::string_view line);
  /// Returns when the server has read everything that was sent.
  void waitUntilTaken();
  /// Ends the server's input.
  void closeInput();
  /// Goes away as the reader of the server's output.
  void closeOutput();

  /// The next line of output, without its line feed; nothing when the output has ended.
  [[nodiscard]] std::optional<std::string> nextLine();
  /// The next line; it is an error when there is none.
  [[nodiscard]] std::string readLine();
  /// All lines until the output ends.
  [[nodiscard]] std::vector<std::string> readToEnd();
  /// Waits until the server has ended, and tells how: "exit 0", "signal 15".
  [[nodiscard]] std::string wait();

  /// What it has said on standard error so far; all of it once wait() has returned.
  [[nodiscard]] const std::string& errors() const { return errorText; }

 private:
  using Deadline = std::chrono::steady_clock::time_point;

  void takeIn(Deadline deadline, const char* purpose, bool forWriting);
  static void readSome(FileDescriptor& from, std::string& into);

  pid_t process = -1;
  FileDescriptor input;
  FileDescriptor output;
  FileDescriptor errorOutput;
  bool readsErrors = true;
  std::string outputText;
  std::size_t outputTaken = 0;
  std::string errorText;
};

}  // namespace corvane::testing
