#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include "corvanectl/CommandLine.h"
#include "corvanectl/protocol/McpClient.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

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

void showLastWords(const ServerLog& log, Console& console) {
  if (log.lastLines().empty()) return;
  console.printError("The server's last words:\n");
  for (const auto& line : log.lastLines()) console.printError("  " + oneLine(line) + "\n");
}

/// Carries out what the user asked for and turns every failure into a message on standard error and
/// an exit status. Only what ends the program by a signal passes through: Interrupted,
/// OutputClosed. By then the server has ended and the console's line is free.
ExitStatus runProgram(const Invocation& invocation, Console& console, Interruption& interruption) {
  ServerLog log(
      invocation.server.showLog
          ? [&console](std::string_view line) { console.printError(std::string(line) + "\n"); }
          : ServerLog::Forward());
  PictureViewer pictureViewer(console, interruption);
  CommandContext context{invocation.server, console, pictureViewer, log, interruption};

  const auto fail = [&](const std::exception& error, ExitStatus status) {
    console.endProgress();
    console.complain(error.what());
    return status;
  };
  const auto failOfServer = [&](const std::exception& error, ExitStatus status) {
    fail(error, status);
    if (!invocation.server.showLog) showLastWords(log, console);
    return status;
  };
  try {
    return invocation.command->execute(context);
  } catch (const Interrupted&) {
    console.endProgress();
    throw;
  } catch (const UsageError& error) {
    return fail(error, ExitStatus::usage);
  } catch (const RpcError& error) {
    // The server is well, and has said all there is to say.
    return fail(error, ExitStatus::failure);
  } catch (const NoAnswer& error) {
    return failOfServer(error, ExitStatus::timedOut);
  } catch (const ProtocolError& error) {
    return failOfServer(error, ExitStatus::protocolTrouble);
  } catch (const std::exception& error) {
    return fail(error, ExitStatus::inputOutput);
  }
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

}  // namespace corvane::ctl

int main(int argc, char** argv) {
  using namespace corvane::ctl;
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
