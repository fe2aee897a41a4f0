#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// One run of the corvanectl program.
struct ProgramRun {
  /// As a shell would see it: 128 and the signal's number when a signal ended the program.
  int status = -1;
  std::string output;
  std::string errors;
};

/// Runs the program to its end, with `input` as its standard input.
[[nodiscard]] ProgramRun runCorvanectl(const std::vector<std::string>& arguments,
                                       std::string_view input = {});

/// The same with the fake server as its server.
[[nodiscard]] ProgramRun runWithFakeServer(std::vector<std::string> arguments,
                                           std::string_view input = {});

/// The status of an ended child process, as a shell would see it. Waits for its end.
[[nodiscard]] int waitForStatus(int processId);

/// Replaces the calling process, a freshly forked one, by the program.
[[noreturn]] void becomeCorvanectl(const std::vector<std::string>& arguments);

}  // namespace corvane
