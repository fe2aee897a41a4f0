#include "corvane_standin/scenario/Script.h"

#include <algorithm>
#include <utility>

#include "corvane_standin/runs/TestRun.h"
#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

constexpr const char* allOthers = "*";

/// Null when nothing is said of that name.
template <class Outcome>
const Outcome* find(const Outcomes<Outcome>& outcomes, const std::string& name) {
  auto found = outcomes.find(name);
  if (found == outcomes.end()) found = outcomes.find(allOthers);
  return found == outcomes.end() ? nullptr : &found->second;
}

/// The name of the first test in the payload that something is said of, else of its first test.
std::string nameOf(const AgentTestSchema& payload, const Outcomes<RequestOutcome>& imports) {
  for (const auto& test : payload.tests) {
    if (imports.contains(test.name)) return test.name;
  }
  return payload.tests.empty() ? std::string() : payload.tests.front().name;
}

const RequestOutcome* find(const LibraryOutcomes& outcomes, AgentLibraryRequest::Action action) {
  using Action = AgentLibraryRequest::Action;
  const auto address = [](const auto& outcome) { return outcome ? &*outcome : nullptr; };
  switch (action) {
    case Action::extractUdi:
      return address(outcomes.extractUdi);
    case Action::deleteUdi:
      return address(outcomes.deleteUdi);
    case Action::resetWorldMap:
      return address(outcomes.resetWorldMap);
  }
  return nullptr;
}

}  // namespace

Script::Script(StandInSettings given) : settings(std::move(given)) {
  // What is said of all tests is said of these as well, and another workspace has others.
  if (!settings.workspace && !settings.outcomes.contains(allOthers)) {
    settings.outcomes.merge(firstOutcomes());
  }
}

template <class Outcome>
Outcome Script::counted(std::string_view sort, const std::string& name, const Outcome* outcome) {
  if (!outcome) return {};
  Outcome turning = *outcome;
  if (turning.times && turns[{sort, name}]++ >= *turning.times) {
    turning.kind = {};
    turning.tornResult.reset();
  }
  return turning;
}

TestOutcome Script::outcomeOf(const std::string& test) {
  return counted("run", test, find(settings.outcomes, test));
}

RequestOutcome Script::outcomeOf(const AgentTestSchema& payload) {
  const auto name = nameOf(payload, settings.imports);
  return counted("import", name, find(settings.imports, name));
}

RequestOutcome Script::outcomeOf(const AgentExploreRequest& request) {
  const auto& name = request.projectName;
  return counted("exploration", name, find(settings.explorations, name));
}

RequestOutcome Script::outcomeOf(const AgentLibraryRequest& request) {
  return counted("library", std::string(rawValue(request.action)),
                 find(settings.libraryRequests, request.action));
}

double Script::pickUpSeconds(const AgentRunRequest& request, const AgentContext& workspace) const {
  double longest = 0;
  try {
    for (const auto* test : testsOf(request, workspace)) {
      const auto* outcome = find(settings.outcomes, test->name);
      const auto said = outcome ? outcome->pickUpSeconds : std::nullopt;
      longest = std::max<double>(longest, said.value_or(settings.pickUpSeconds));
    }
    return longest;
  } catch (const RequestRefused&) {
    return settings.pickUpSeconds;
  }
}

double Script::pickUpSeconds(const RequestOutcome* outcome) const {
  return (outcome ? outcome->pickUpSeconds : std::nullopt).value_or(settings.pickUpSeconds);
}

double Script::pickUpSeconds(const AgentTestSchema& payload) const {
  return pickUpSeconds(find(settings.imports, nameOf(payload, settings.imports)));
}

double Script::pickUpSeconds(const AgentExploreRequest& request) const {
  return pickUpSeconds(find(settings.explorations, request.projectName));
}

double Script::pickUpSeconds(const AgentLibraryRequest& request) const {
  return pickUpSeconds(find(settings.libraryRequests, request.action));
}

}  // namespace corvane::standin
