#include <algorithm>

#include "CorvaneCore/json/JsonWriter.h"
#include "CorvaneCore/json/LenientReading.h"
#include "CorvaneCore/workspace/AgentContext.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"
#include "corvane_mcp/workspace/PublishedContext.h"

namespace corvane {

namespace {

constexpr std::string_view name = "describe_project";

constexpr std::string_view description =
    R"(Describe the user's Corvane workspace: which projects exist, which one is currently open, its platform and app identifiers, every test (with the exact names run_test expects, declared parameter names, AND a per-step summary of what each test does), suites, the bound simulator/emulator, the user's reusable building blocks (userDefinedInteractions — embed via create_test's userDefined reference), and each project's WORLD MAP (screens Corvane has explored, actions tried, and where they led).

Step lists are the PERSISTED steps, 0-based — reuseSteps/extract_udi ranges index into exactly what you see here. A test with autoScaffold:true persists functional steps only: the app lifecycle (terminate/open) is injected at run time and takes no index. Older tests may still hold explicit terminate/open steps; those are persisted steps like any other and count in the indexes. UDIs are user-global, not per project: check sourceProjectName before you embed one app's flow into another app's test.

Run-history health, per test:
  • verified — true when at least one fully passed run postdates the test's last edit; false = not green since the last edit. Absent when an older Corvane wrote the file.
  • flakinessScore — 0.0 stable to 1.0 alternating pass/fail on every run.
  • isFlaky — true once flakinessScore crosses Corvane's threshold.
  • lastFailure — {stepTitle, errorMessage} of the first failed step of the most recent failed run; also absent when the test never failed.
flakinessScore/isFlaky/lastFailure are absent when the test has never run.

This is your PLANNING BRIEF — call it first. Division of labour: explore_flow AUTHORS concrete flows live on the device; create_test COMPOSES what already exists (runTest, userDefined, reuseSteps, visualAssert probes and glue). For a cold or empty project, hand explore_flow the whole map of goals in ONE call. After an exploration, call this again and study the new world-map edges and the authored steps before you compose.

With no arguments it returns the current project in full plus a one-line summary of every other known project; pass projectName to get a specific project in full.

The data comes from a context file Corvane.app publishes whenever projects, tests, platform, or devices change. The response includes updatedAt; if the context is missing or looks stale the response says so — open (or update) Corvane.app, then retry.)";

constexpr std::chrono::hours staleAfter{24};

struct Arguments {
  std::optional<std::string> projectName;

  static auto arguments() {
    return std::tuple(argument("projectName", &Arguments::projectName,
                               "Optional. Return full detail for this project instead of the "
                               "currently open one."));
  }
};

ToolsCallResult contextUnavailable(const std::filesystem::path& file) {
  return ToolsCallResult::failure(
      "error:context_unavailable\n\nCorvane.app has not published workspace context yet (or the "
      "file is unreadable). Open Corvane.app — it publishes context on launch and whenever "
      "projects/tests/devices change. If describe_project keeps failing, update Corvane: this tool "
      "requires a build with run-feedback support.\n\n  Expected at: " +
      displayPath(file));
}

ToolsCallResult unknownProject(const std::string& name, const PublishedContext& context) {
  std::vector<std::string_view> known;
  for (const auto& project : context.projects()) {
    if (const auto* text = project.name.string()) known.push_back(*text);
  }
  std::sort(known.begin(), known.end());
  std::string names;
  for (const auto& text : known) {
    // A name may be empty, so the names so far do not tell which is the first.
    if (&text != &known.front()) names += ", ";
    names += text;
  }
  return ToolsCallResult::failure(
      "error:unknown_project\n\nNo project named '" + name +
      "' in the published context. Known projects: " + (known.empty() ? "(none)" : names) +
      ". Names are matched case-insensitively — check the spelling.");
}

AnyCodable summary(const PublishedContext::Project& project) {
  using Project = AgentContext::ProjectContext;
  JsonObject summary{{"testCount", project.testCount}};
  if (!project.name.isNull()) summary.set(keyOf<&Project::name>(), project.name);
  if (!project.platform.isNull()) summary.set(keyOf<&Project::platform>(), project.platform);
  return summary;
}

/// What the answer carries: the workspace's own members, `selected` whole, the others summarised.
JsonObject brief(const PublishedContext& context, const PublishedContext::Project* selected) {
  JsonObject brief;
  for (const std::string_view key :
       {keyOf<&AgentContext::schemaVersion>(), keyOf<&AgentContext::updatedAt>(),
        keyOf<&AgentContext::appVersion>(), keyOf<&AgentContext::device>(),
        keyOf<&AgentContext::userDefinedInteractions>()}) {
    const AnyCodable* value = context.members().find(key);
    if (value && !value->isNull()) brief.set(key, *value);
  }
  if (const auto* current = findField<&AgentContext::currentProjectName>(context.members())) {
    brief.set(keyOf<&AgentContext::currentProjectName>(), *current);
  }
  if (selected) brief.set("project", context.whole(*selected));
  AnyCodable::Array others;
  for (const auto& project : context.projects()) {
    if (&project != selected) others.push_back(summary(project));
  }
  brief.set("otherProjects", std::move(others));
  return brief;
}

std::vector<std::string> warnings(const PublishedContext& context, const ToolServices& services) {
  std::vector<std::string> lines;
  const auto* version = findField<&AgentContext::schemaVersion>(context.members());
  if (version && *version > AgentContext::currentSchemaVersion) {
    lines.push_back("warning: context written by a newer Corvane (schema " +
                    std::to_string(*version) + "); some fields may be unrecognized.");
  }
  if (!services.launcher.isRunning()) {
    lines.emplace_back(
        "warning: Corvane.app is not running; context reflects the last session and may be stale. "
        "run_test/create_test will launch it.");
    return lines;
  }
  const auto* text = findField<&AgentContext::updatedAt>(context.members());
  const auto updatedAt = text ? parseDate(*text) : std::nullopt;
  if (updatedAt &&
      std::chrono::ceil<std::chrono::seconds>(services.clock.now()) - *updatedAt > staleAfter) {
    lines.emplace_back(
        "warning: context is over a day old; if projects or tests changed recently it may not "
        "reflect them.");
  }
  return lines;
}

ToolsCallResult call(const Arguments& arguments, const ToolServices& services) {
  const auto context = PublishedContext::read(services.paths.agentContextFile());
  if (!context) return contextUnavailable(services.paths.agentContextFile());

  auto notes = warnings(*context, services);
  const PublishedContext::Project* selected = nullptr;
  if (arguments.projectName) {
    selected = context->find(*arguments.projectName);
    if (!selected) return unknownProject(*arguments.projectName, *context);
  } else if (context->projects().empty()) {
    notes.emplace_back("note: no projects are published yet — create_test will create one.");
  } else if (const auto* current =
                 findField<&AgentContext::currentProjectName>(context->members())) {
    selected = context->find(*current);
  } else {
    notes.emplace_back(
        "note: no project is currently open in Corvane; pass projectName for full detail.");
  }

  const auto* updatedAt = findField<&AgentContext::updatedAt>(context->members());
  std::string text =
      "Corvane workspace context (updated " + (updatedAt ? *updatedAt : "<unknown>") + ").";
  for (const auto& note : notes) text += "\n" + note;
  text += "\n\n" + toJson(brief(*context, selected));
  return ToolsCallResult::success(std::move(text));
}

}  // namespace

MCPTool makeDescribeProjectTool(const ToolServices& services) {
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::refused); },
      [services](ToolCall sent) { return call(takeArgumentsIfAny<Arguments>(sent), services); }};
}

}  // namespace corvane
