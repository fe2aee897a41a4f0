#include <algorithm>

#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/ResultPrinting.h"
#include "corvanectl/commands/ToolArguments.h"

namespace corvane {

namespace {

/// How long a tool may wait before it answers, told by the argument that asks it to.
Seconds waitingTime(const std::optional<AnyCodable::Object>& arguments) {
  const AnyCodable* asked = arguments ? arguments->find("waitSeconds") : nullptr;
  const std::int64_t* seconds = asked ? asked->integer() : nullptr;
  constexpr std::int64_t longestWait = 240;
  return std::chrono::seconds(seconds ? std::clamp<std::int64_t>(*seconds, 0, longestWait) : 0);
}

}  // namespace

ExitStatus execute(const CallCommand& command, CommandContext& context) {
  std::optional<AnyCodable::Object> arguments;
  if (command.arguments) arguments = readToolArguments(*command.arguments, context.interruption);
  const Seconds waiting = waitingTime(arguments);

  Session session(context);
  const AnyCodable answer = session.callTool(command.tool, std::move(arguments), waiting);
  const ToolResult result = ToolResult::from(answer);
  if (command.json) {
    context.console.print(toJson(answer) + "\n");
  } else {
    PictureOutput pictures(command.pictures, command.tool, inlinePictures(context));
    printResult(result, pictures, context.console);
  }
  return exitStatusOf(result);
}

}  // namespace corvane
