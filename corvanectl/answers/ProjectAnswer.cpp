#include "corvanectl/answers/ProjectAnswer.h"

#include <algorithm>
#include <utility>

#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/text/NearestName.h"
#include "corvanectl/answers/ToolRefusal.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

using Project = AgentContext::ProjectContext;
using Summary = ProjectAnswer::Summary;

/// The elements of an array, each as far as it has the form of a record.
template <class Record>
std::vector<Record> readEach(const AnyCodable::Array* array) {
  std::vector<Record> records;
  if (!array) return records;
  for (const AnyCodable& element : *array) {
    if (!element.object()) continue;
    AnyCodable::Object members = *element.object();
    takeFieldsExcept<>(members, records.emplace_back());
  }
  return records;
}

/// Test by test, so that one of another form does not cost the others.
Project readProject(const AnyCodable::Object& object) {
  Project project;
  AnyCodable::Object members = object;
  takeFieldsExcept<&Project::tests, &Project::suites>(members, project);
  project.tests = readEach<AgentContext::TestContext>(findField<&Project::tests>(object));
  project.suites = readEach<AgentContext::SuiteContext>(findField<&Project::suites>(object));
  return project;
}

std::vector<Summary> otherProjects(const AnyCodable::Object& snapshot) {
  std::vector<Summary> projects;
  const auto* others = snapshot.findAs<AnyCodable::Array>("otherProjects");
  if (!others) return projects;
  for (const AnyCodable& other : *others) {
    const auto* name = findField<&Project::name>(other);
    if (!name) continue;
    Summary& summary = projects.emplace_back(Summary{*name, {}, 0});
    if (const auto* platform = findField<&Project::platform>(other)) summary.platform = *platform;
    if (const auto* count = other.findAs<std::int64_t>("testCount")) summary.testCount = *count;
  }
  return projects;
}

/// The lines between the head of the answer and the empty line before its JSON.
std::vector<std::string> notesIn(std::string_view answer) {
  std::vector<std::string> notes;
  answer = answer.substr(0, answer.find("\n\n"));
  while (true) {
    const std::size_t end = answer.find('\n');
    if (end == std::string_view::npos) return notes;
    answer.remove_prefix(end + 1);
    notes.emplace_back(answer.substr(0, answer.find('\n')));
  }
}

template <auto member>
std::optional<std::string> textOf(const AnyCodable::Object& snapshot) {
  const auto* text = findField<member>(snapshot);
  return text ? std::optional(*text) : std::nullopt;
}

template <class Record>
std::vector<std::string> namesOf(const std::vector<Record>& records) {
  std::vector<std::string> names;
  names.reserve(records.size());
  for (const auto& record : records) names.push_back(record.name);
  return names;
}

bool has(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// Complains of a name that `whole` has not, and says which it has.
[[noreturn]] void complainOf(std::string_view what, const std::string& name,
                             const std::string& whole, const std::vector<std::string>& known) {
  std::string text = whole + " has no " + std::string(what) + " '" + oneLine(name) + "'.";
  const std::string suggestion = didYouMean(name, known);
  text += suggestion;
  if (suggestion.empty()) {
    constexpr std::size_t mostListed = 10;
    std::string names;
    for (std::size_t i = 0; i < std::min(known.size(), mostListed); ++i) {
      names += (i == 0 ? " It has '" : ", '") + oneLine(known[i]) + "'";
    }
    text += known.empty() ? " It has none." : names;
    if (known.size() > mostListed)
      text += " and " + std::to_string(known.size() - mostListed) + " more";
    if (!known.empty()) text += ".";
  }
  throw UsageError(text + " (--unchecked runs it all the same)");
}

}  // namespace

std::vector<std::string> ProjectAnswer::projectNames() const {
  return namesOf(projects);
}

ProjectAnswer askProject(Session& session, const std::optional<std::string>& name) {
  constexpr std::string_view tool = "describe_project";
  AnyCodable::Object arguments;
  if (name) arguments.set("projectName", *name);
  const ToolResult result = ask(session, tool, std::move(arguments));

  ProjectAnswer answer;
  answer.notes = notesIn(result.firstText());
  answer.snapshot = snapshotOf(result, tool);
  answer.updatedAt = textOf<&AgentContext::updatedAt>(answer.snapshot);
  answer.appVersion = textOf<&AgentContext::appVersion>(answer.snapshot);
  answer.currentProject = textOf<&AgentContext::currentProjectName>(answer.snapshot);
  answer.projects = otherProjects(answer.snapshot);
  if (const auto* object = answer.snapshot.findAs<AnyCodable::Object>("project")) {
    const Project& project = answer.project.emplace(readProject(*object));
    answer.projects.push_back(
        {project.name, project.platform, static_cast<std::int64_t>(project.tests.size())});
  }
  std::sort(answer.projects.begin(), answer.projects.end(),
            [](const Summary& a, const Summary& b) { return a.name < b.name; });
  return answer;
}

void checkNames(Session& session, const std::string& project, const std::vector<std::string>& tests,
                const std::optional<std::string>& suite) {
  try {
    const ProjectAnswer answer = askProject(session, project);
    // The server finds it whatever its case; the app that runs it does not.
    if (!answer.project || answer.project->name != project) {
      complainOf("project", project, "the workspace", answer.projectNames());
    }
    const std::string whole = "the project '" + oneLine(project) + "'";
    const std::vector<std::string> known = namesOf(answer.project->tests);
    for (const auto& test : tests) {
      if (!has(known, test)) complainOf("test", test, whole, known);
    }
    const std::vector<std::string> suites = namesOf(answer.project->suites);
    if (suite && !has(suites, *suite)) complainOf("suite", *suite, whole, suites);
  } catch (const ToolRefusal& refusal) {
    if (refusal.code == noWorkspace) return;
    if (refusal.code != noSuchProject) throw;
    complainOf("project", project, "the workspace", askProject(session).projectNames());
  }
}

}  // namespace corvane::ctl
