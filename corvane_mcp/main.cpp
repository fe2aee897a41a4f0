#include <unistd.h>

#include <csignal>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "corvane_mcp/program/ProgramHelp.h"
#include "corvane_mcp/server/MCPServer.h"
#include "corvane_mcp/server/StandardStreams.h"
#include "corvane_mcp/tools/Tools.h"

using namespace corvane;

namespace {

/// Answers a person who started the program by hand; true when that was all that was asked.
bool answerPerson(int argumentCount, char** arguments) {
  const auto answer =
      argumentCount == 2 ? ProgramHelp::answerTo(arguments[1]) : std::optional<std::string>();
  if (answer) {
    writeWhole(STDOUT_FILENO, *answer, WhenFull::wait);
  } else if (::isatty(STDIN_FILENO) == 1) {
    writeWhole(STDERR_FILENO, ProgramHelp::wordsOnTerminal(), WhenFull::giveUp);
  }
  return answer.has_value();
}

/// Keeps a few megabytes of freed memory for the next call. The C library would give it back after
/// each, and a quarter of the time of a call with thousands of steps would go to fresh pages.
void keepSomeMemory() {
#ifdef __GLIBC__
  ::mallopt(M_MMAP_THRESHOLD, 2 << 20);
  ::mallopt(M_TRIM_THRESHOLD, 4 << 20);
#endif
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (answerPerson(argumentCount, arguments)) return 0;
  keepSomeMemory();
  MessageWriter writer(claimStandardOutput());
  // A reader that goes away must not end the process; what is written to it is dropped. Nor must a
  // file that may not grow any further; the write fails and is reported.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  // A client may have been told to ignore its children, and that is inherited; how ours end
  // matters.
  std::signal(SIGCHLD, SIG_DFL);

  const AgentPaths paths = AgentPaths::current();
  Logger logger(paths.logFile());
  const CorvaneLauncher launcher({argumentCount > 0 ? arguments[0] : "", paths.home()}, logger);
  ClientIdentity client;
  const SystemClock clock;

  ToolRegistry registry;
  paths.ensureAgentImportsDirectoryExists();
  paths.ensureAgentRunRequestsDirectoryExists();
  registerTools(registry, {paths, launcher, client, clock, logger});

  MCPServer server({registry, {"corvane-mcp", CORVANE_VERSION}, client, logger, writer});
  LineReader input(STDIN_FILENO);
  server.run(input);
  return 0;
}
