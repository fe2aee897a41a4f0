#include "corvanectl/commands/Session.h"

#include <cstdlib>

#include "corvanectl/protocol/ServerLocation.h"
#include "corvanectl/system/ExecutablePath.h"

namespace corvane {

namespace {

std::filesystem::path serverProgram(const ServerOptions& options) {
  const char* searchPath = std::getenv("PATH");
  return locateServer(options.server, executablePath(), searchPath ? searchPath : "");
}

}  // namespace

Session::Session(CommandContext& context)
    : options(context.options),
      server(serverProgram(options), context.log, context.interruption),
      mcpClient(server, [&console = context.console](std::string_view warning) {
        console.complain(warning);
      }) {
  mcpClient.initialize(answerDeadline());
}

AnyCodable Session::callTool(std::string_view tool, std::optional<AnyCodable::Object> arguments,
                             Seconds waiting) {
  return mcpClient.callTool(tool, std::move(arguments), answerDeadline(waiting));
}

Deadline Session::answerDeadline(Seconds waiting) const {
  return after(options.timeout ? Seconds(*options.timeout) : usualPatience + waiting);
}

}  // namespace corvane
