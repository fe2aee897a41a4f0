#include "corvanectl/commands/CancelCommand.h"

#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/commands/ResultOutput.h"
#include "corvanectl/commands/Session.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

/// The tool's answer, with a command in the place of what an agent is to do next.
std::string forPerson(std::string_view answer, std::string_view requestId) {
  using namespace AnswerTexts;
  if (answer.ends_with(cancelledNote)) answer.remove_suffix(cancelledNote.size());
  const bool goesOn = answer.ends_with(cancellingNote);
  if (goesOn) answer.remove_suffix(cancellingNote.size());
  std::string text = cleanLines(answer);
  if (goesOn) text += "\nSee how it ends with 'corvanectl follow " + oneLine(requestId) + "'.";
  return text + "\n";
}

}  // namespace

Command::About CancelCommand::about() const {
  return {"cancel", "Cancel a request", "  corvanectl cancel REQUEST_ID\n"};
}

void CancelCommand::addOptions(CLI::App& app) {
  addRequestId(app, requestId);
  addJson(app, json, "Print the tool's result as JSON");
}

ExitStatus CancelCommand::execute(CommandContext& context) const {
  Session session(context);
  const std::string id = wholeRequestId(requestId, session);
  const AnyCodable answer = session.callTool("cancel_run", AnyCodable::Object{{"requestId", id}});
  const ToolResult result = ToolResult::from(answer);
  context.console.print(json ? toJson(answer) + "\n" : forPerson(result.firstText(), id));
  return exitStatusOf(result);
}

}  // namespace corvane::ctl
