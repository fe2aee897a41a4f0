#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/protocol/ChildProcess.h"
#include "corvanectl/protocol/LineBuffer.h"
#include "corvanectl/protocol/ServerLog.h"
#include "corvanectl/system/Interruption.h"

namespace corvane {

/// A running server and the lines that go to and fro. Everything is done by the calling thread
/// while it waits for a line, so neither side can block the other. At the end of the object's life
/// the server has ended too.
class ServerProcess {
 public:
  /// Starts the server. `log` and `interruption` outlive it. Throws ProtocolError.
  ServerProcess(const std::filesystem::path& program, ServerLog& log, Interruption& interruption);
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
  bool waitForEnd(std::chrono::milliseconds patience);

  ServerLog& log;
  Interruption& interruption;
  ChildProcess child;
  std::string outgoing;
  /// How much of `outgoing` has left.
  std::size_t written = 0;
  LineBuffer incoming;
};

}  // namespace corvane
