#include "CorvaneCore/json/JsonWriter.h"
#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/Follow.h"
#include "corvanectl/commands/ResultPrinting.h"
#include "corvanectl/commands/RunArguments.h"
#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {

ExitStatus execute(const RunCommand& command, CommandContext& context) {
  constexpr std::string_view tool = "run_test";
  const Deadline end = followEnd(context.options);
  Session session(context);
  const AnyCodable answer = session.callTool(tool, runArguments(command));
  const ToolResult result = ToolResult::from(answer);
  const bool goesOn = command.follow && !result.isError;
  if (!command.json) {
    PictureOutput pictures(command.pictures, tool);
    printResult(result, pictures, context.console);
  } else if (!goesOn) {
    context.console.print(toJson(answer) + "\n");
  }
  if (!goesOn) return exitStatusOf(result);

  const auto requestId = dispatchedRequestId(result.firstText());
  if (!requestId) throw ProtocolError("the answer to run_test names no request id to follow");
  if (!command.json) context.console.print("\n\n");
  return follow({*requestId, command.json, command.pictures}, session, end, context);
}

}  // namespace corvane
