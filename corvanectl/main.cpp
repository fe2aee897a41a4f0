#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "corvanectl/CommandLine.h"
#include "corvanectl/Program.h"

namespace corvane {

namespace {

/// A standard stream that is closed would lend its number to the first pipe.
void openMissingStandardStreams() {
  while (true) {
    const int file = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (file < 0 || file > STDERR_FILENO) {
      ::close(file);
      return;
    }
  }
}

/// Ends the way whoever started the program expects of one that a signal ended.
[[noreturn]] void endBySignal(int signal) {
  ::signal(signal, SIG_DFL);
  ::raise(signal);
  ::_exit(128 + signal);
}

ExitStatus answerOrRun(int argc, char** argv) {
  Interruption interruption;
  Console console(interruption);
  const auto parsed = parseCommandLine(argc, argv);
  if (const auto* reply = std::get_if<CommandLineReply>(&parsed)) {
    if (reply->status == ExitStatus::success) {
      console.print(reply->text);
    } else {
      console.printError(reply->text);
    }
    return reply->status;
  }
  return runProgram(std::get<Invocation>(parsed), console, interruption);
}

}  // namespace

}  // namespace corvane

int main(int argc, char** argv) {
  using namespace corvane;
  openMissingStandardStreams();
  try {
    return static_cast<int>(answerOrRun(argc, argv));
  } catch (const Interrupted& interrupted) {
    endBySignal(interrupted.signal);
  } catch (const OutputClosed&) {
    endBySignal(SIGPIPE);
  } catch (const std::exception&) {
    // Standard error cannot be written either, so the status has to tell.
    return static_cast<int>(ExitStatus::inputOutput);
  }
}
