#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

Session::Session(CommandContext& context)
    : options(context.options),
      usualTimeout(context.usualTimeout),
      server(locateServer(options.server, executablePath(), searchPath()), context.log,
             context.interruption),
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
  return after(options.timeout ? Seconds(*options.timeout) : usualTimeout + waiting);
}

}  // namespace corvane::ctl
