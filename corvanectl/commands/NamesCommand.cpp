#include "corvanectl/commands/NamesCommand.h"

#include "corvanectl/answers/ProjectAnswer.h"
#include "corvanectl/answers/RequestIds.h"
#include "corvanectl/answers/StatusAnswer.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/setup/Clients.h"

namespace corvane::ctl {

namespace {

using Names = std::vector<std::string>;

template <class Records>
Names namesOf(const Records& records) {
  Names names;
  for (const auto& record : records) names.push_back(record.name);
  return names;
}

Names requestIds(Session& session) {
  Names ids{std::string(lastRequest)};
  for (const KnownRequest& request : askStatus(session).requests) ids.push_back(request.id);
  return ids;
}

Names toolNames(Session& session) {
  Names names;
  const AnyCodable listed = session.client().request("tools/list", {}, session.answerDeadline());
  const auto* tools = listed.findAs<AnyCodable::Array>("tools");
  if (!tools) return names;
  for (const AnyCodable& tool : *tools) {
    if (const auto* name = tool.findAs<std::string>("name")) names.push_back(*name);
  }
  return names;
}

}  // namespace

Command::About NamesCommand::about() const {
  return {.name = "names",
          .description = "List names for a shell to complete words with",
          .examples = {},
          .hidden = true};
}

void NamesCommand::addOptions(CLI::App& app) {
  app.add_option("KIND", kind, "projects, tests, suites, requests, tools or clients")
      ->required()
      ->check(CLI::IsMember({"projects", "tests", "suites", "requests", "tools", "clients"})
                  .description(""));
  app.add_option("PROJECT", project, "Whose tests or suites (default: the open project's)");
}

Names NamesCommand::list(CommandContext& context) const {
  if (kind == "clients") return clientNames();
  Session session(context);
  if (kind == "requests") return requestIds(session);
  if (kind == "tools") return toolNames(session);
  const bool named = project && !project->empty();
  const ProjectAnswer answer = askProject(session, named ? project : std::nullopt);
  if (kind == "projects") return answer.projectNames();
  if (!answer.project) return {};
  return kind == "tests" ? namesOf(answer.project->tests) : namesOf(answer.project->suites);
}

ExitStatus NamesCommand::execute(CommandContext& context) const {
  std::string text;
  for (const auto& name : list(context)) {
    // What does not fit on a line cannot be completed.
    if (name.find('\n') == std::string::npos) text += name + "\n";
  }
  context.console.print(text);
  return ExitStatus::success;
}

}  // namespace corvane::ctl
