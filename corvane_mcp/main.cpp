#include <unistd.h>

#include <csignal>

#include "corvane_mcp/server/MCPServer.h"
#include "corvane_mcp/server/StandardStreams.h"
#include "corvane_mcp/tools/Tools.h"

using namespace corvane;

int main(int argumentCount, char** arguments) {
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
