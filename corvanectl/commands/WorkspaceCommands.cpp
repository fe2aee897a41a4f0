#include "corvanectl/commands/WorkspaceCommands.h"

#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/text/NearestName.h"
#include "corvanectl/answers/ProjectAnswer.h"
#include "corvanectl/answers/ToolRefusal.h"
#include "corvanectl/commands/Options.h"
#include "corvanectl/terminal/DisplayText.h"
#include "corvanectl/terminal/Table.h"

namespace corvane::ctl {

namespace {

using Project = AgentContext::ProjectContext;
using Test = AgentContext::TestContext;

/// What the server says, and a person's next step where there is nothing to show.
ProjectAnswer askOrExplain(Session& session, const std::optional<std::string>& name) {
  try {
    return askProject(session, name);
  } catch (const ToolRefusal& refusal) {
    if (refusal.code == noWorkspace) {
      throw UsageError(
          "Corvane.app has not published its workspace yet; open it once "
          "('corvanectl doctor' tells what is missing)");
    }
    if (refusal.code != noSuchProject) throw;
    throw UsageError("the workspace has no project '" + oneLine(*name) + "'." +
                     didYouMean(*name, askProject(session).projectNames()) +
                     " 'corvanectl projects' lists those it has");
  }
}

void printNotes(const ProjectAnswer& answer, CommandContext& context) {
  for (const auto& note : answer.notes) context.console.complain(note);
}

std::string remarks(const Test& test) {
  std::string text;
  const auto add = [&text](const std::string& remark) {
    text += (text.empty() ? "" : "; ") + remark;
  };
  if (test.verified) add(*test.verified ? "verified" : "not green since its last edit");
  if (test.isFlaky.value_or(false)) add("flaky");
  if (test.parameterNames && !test.parameterNames->empty()) {
    std::string names;
    for (const auto& name : *test.parameterNames) names += (names.empty() ? "" : ", ") + name;
    add("takes " + names);
  }
  return text;
}

std::string testTable(const Project& project) {
  std::vector<std::vector<std::string>> rows{{"TEST", "STEPS", "REMARKS"}};
  for (const Test& test : project.tests) {
    rows.push_back({test.name, std::to_string(test.steps.size()), remarks(test)});
  }
  return asTable(rows);
}

std::string suiteTable(const Project& project) {
  std::vector<std::vector<std::string>> rows{{"SUITE", "TESTS"}};
  for (const auto& suite : project.suites) {
    rows.push_back({suite.name, std::to_string(suite.testIds.size())});
  }
  return asTable(rows);
}

}  // namespace

Command::About ProjectsCommand::about() const {
  return {"projects", "List the projects of the workspace", "  corvanectl projects\n"};
}

void ProjectsCommand::addOptions(CLI::App& app) {
  addJson(app, json, "Print them as a JSON list");
}

ExitStatus ProjectsCommand::execute(CommandContext& context) const {
  Session session(context);
  const ProjectAnswer answer = askOrExplain(session, {});
  AnyCodable::Array list;
  std::vector<std::vector<std::string>> rows{{"PROJECT", "TESTS", "PLATFORM", ""}};
  for (const auto& project : answer.projects) {
    const bool isOpen = project.name == answer.currentProject;
    AnyCodable::Object entry{
        {"name", project.name}, {"testCount", project.testCount}, {"open", isOpen}};
    if (project.platform) entry.set("platform", *project.platform);
    list.emplace_back(std::move(entry));
    rows.push_back({project.name, std::to_string(project.testCount), project.platform.value_or(""),
                    isOpen ? "open in Corvane.app" : ""});
  }
  printNotes(answer, context);
  if (json) {
    context.console.print(toJson(std::move(list)) + "\n");
  } else if (!list.empty()) {
    context.console.print(asTable(rows));
  }
  return ExitStatus::success;
}

Command::About TestsCommand::about() const {
  return {"tests", "List the tests and suites of a project",
          "  corvanectl tests Shop\n  corvanectl tests --json\n"};
}

void TestsCommand::addOptions(CLI::App& app) {
  app.add_option("PROJECT", project,
                 "The project's name (default: the one that is open in Corvane.app)")
      ->type_name("");
  addJson(app, json, "Print what the workspace says of them, as a JSON list");
}

ExitStatus TestsCommand::execute(CommandContext& context) const {
  Session session(context);
  const ProjectAnswer answer = askOrExplain(session, project);
  if (!answer.project) {
    throw UsageError(
        "no project is open in Corvane.app; name one ('corvanectl projects' lists "
        "them)");
  }
  printNotes(answer, context);
  if (json) {
    const AnyCodable* whole = answer.snapshot.find("project");
    const AnyCodable* tests = whole->find("tests");
    context.console.print((tests ? toJson(*tests) : "[]") + "\n");
    return ExitStatus::success;
  }
  context.console.print(oneLine(answer.project->name) + "\n\n" + testTable(*answer.project));
  if (!answer.project->suites.empty()) context.console.print("\n" + suiteTable(*answer.project));
  return ExitStatus::success;
}

}  // namespace corvane::ctl
