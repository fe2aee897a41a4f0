#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "tests/support/DefaultInterrupt.h"

namespace corvane::testing {

/// One run of the corvanectl program.
struct ProgramRun {
  /// As a shell would see it: 128 and the signal's number when a signal ended the program.
  int status = -1;
  std::string output;
  std::string errors;
};

/// The texts as an argument vector or an environment for a new process; points into `texts`.
[[nodiscard]] std::vector<char*> pointersTo(std::vector<std::string>& texts);

/// Runs the program to its end, with `input` as its standard input. `environment` holds NAME=value;
/// without any the program gets this one's. `program` is the built one, or a copy of it.
[[nodiscard]] ProgramRun runCorvanectl(const std::vector<std::string>& arguments,
                                       std::string_view input = {},
                                       std::vector<std::string> environment = {},
                                       const std::string& program = CORVANECTL_PROGRAM);

/// The same with the fake server as its server.
[[nodiscard]] ProgramRun runWithFakeServer(std::vector<std::string> arguments,
                                           std::string_view input = {});

/// The status of an ended child process, as a shell would see it. Waits for its end.
[[nodiscard]] int waitForStatus(int processId);

/// Replaces the calling process, a freshly forked one, by the program.
[[noreturn]] void becomeCorvanectl(const std::vector<std::string>& arguments,
                                   std::vector<std::string> environment = {},
                                   const std::string& program = CORVANECTL_PROGRAM);

/// A terminal whose keyboard and screen are in the test's hands.
class Pseudoterminal {
 public:
  explicit Pseudoterminal(unsigned short columns);

  /// The terminal's side, for what is under test.
  [[nodiscard]] int side() const { return terminal.get(); }

  /// A handle on that side of its own, which keeps the terminal alive when programs have ended.
  [[nodiscard]] FileDescriptor anotherSide() const;

  /// What kind of terminal the program is told it has; xterm unless this was called.
  void setKind(std::string_view name) { kind = name; }

  /// Starts corvanectl as the foreground program of this terminal; gives its process id. The
  /// terminal's side is closed here afterwards.
  [[nodiscard]] int start(const std::vector<std::string>& arguments);

  void type(std::string_view keys);
  /// All that was shown so far, read until `text` is in it or nothing more comes.
  const std::string& readUntil(std::string_view text);
  /// What was shown since the last call of this, read until `end`, which is left out.
  std::string readPast(std::string_view end);
  /// Gives the window another width.
  void resize(unsigned short columns);
  /// All that was shown, read until the program has closed the terminal.
  const std::string& readAll();

 private:
  bool readMore();

  DefaultInterrupt interrupt;
  FileDescriptor keyboard;
  FileDescriptor terminal;
  std::string kind = "xterm";
  std::string shown;
  /// How much of it readPast has given.
  std::size_t taken = 0;
};

/// Whether what is typed at a terminal is shown and can be edited, as it is before programs change
/// that.
[[nodiscard]] bool hasUsualModes(const FileDescriptor& terminalSide);

}  // namespace corvane::testing
