#include "corvanectl/Program.h"

#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/UsageError.h"
#include "corvanectl/protocol/ProtocolError.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

namespace {

void showLastWords(const ServerLog& log, Console& console) {
  if (log.lastLines().empty()) return;
  console.printError("The server's last words:\n");
  for (const auto& line : log.lastLines()) console.printError("  " + oneLine(line) + "\n");
}

}  // namespace

ExitStatus runProgram(const Invocation& invocation, Console& console, Interruption& interruption) {
  ServerLog log(
      invocation.server.showLog
          ? [&console](std::string_view line) { console.printError(std::string(line) + "\n"); }
          : ServerLog::Forward());
  CommandContext context{invocation.server, console, log, interruption};

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
    return std::visit([&](const auto& command) { return execute(command, context); },
                      invocation.command);
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

}  // namespace corvane
