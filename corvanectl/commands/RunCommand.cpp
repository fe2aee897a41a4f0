#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/commands/Commands.h"
#include "corvanectl/commands/ResultOutput.h"

namespace corvane::ctl {

AnyCodable::Object runArguments(const RunCommand& command) {
  AnyCodable::Object arguments{{"projectName", command.project}};
  if (!command.tests.empty()) arguments.set("testNames", command.tests);
  if (command.suite) arguments.set("suiteName", *command.suite);
  if (command.all) arguments.set("runAll", true);
  AnyCodable::Object params;
  for (const auto& [name, value] : command.params) params.set(name, value);
  if (!params.empty()) arguments.set("params", std::move(params));
  if (command.build) arguments.set("buildFirst", *command.build);
  if (command.platform) arguments.set("targetPlatform", *command.platform);
  if (command.udid) arguments.set("simulatorUDID", *command.udid);
  return arguments;
}

ExitStatus execute(const RunCommand& command, CommandContext& context) {
  constexpr std::string_view tool = "run_test";
  const Deadline end = followEnd(context.options);
  Session session(context);
  const AnyCodable answer = session.callTool(tool, runArguments(command));
  const ToolResult result = ToolResult::from(answer);
  const bool goesOn = command.follow && !result.isError;
  if (!command.json) {
    ResultOutput(context.console, tool, command.pictures, &context.pictureViewer).print(result);
  } else if (!goesOn) {
    context.console.print(toJson(answer) + "\n");
  }
  if (!goesOn) return exitStatusOf(result);

  const auto requestId = AnswerTexts::readRequestId(result.firstText());
  if (!requestId) throw ProtocolError("the answer to run_test names no request id to follow");
  if (!command.json) context.console.print("\n\n");
  return follow({*requestId, command.json, command.pictures}, session, end, context);
}

}  // namespace corvane::ctl
