#include "corvane_standin/library/LibraryJob.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "corvane_standin/workspace/Workspace.h"

namespace corvane::standin {

namespace {

using Action = AgentLibraryRequest::Action;
using Udi = AgentContext::UdiContext;

std::vector<AgentContext::StepSummary> stepRange(const AgentContext::TestContext& test,
                                                 std::int64_t fromStep, std::int64_t toStep) {
  const auto count = static_cast<std::int64_t>(test.steps.size());
  if (fromStep < 0 || toStep < fromStep || toStep >= count) {
    throw RequestRefused("The test " + inQuotes(test.name) + " has the steps 0 to " +
                         std::to_string(count - 1) + ": steps " + std::to_string(fromStep) +
                         " to " + std::to_string(toStep) + " cannot be taken out of it.");
  }
  return {test.steps.begin() + fromStep, test.steps.begin() + toStep + 1};
}

/// Makes a building block of a range of steps, or replaces the steps of the one of that name, whose
/// id then stays. Throws RequestRefused.
AgentRunResult::UdiInfo extractUdi(const AgentLibraryRequest& request, AgentContext& workspace,
                                   const Ids& ids) {
  const auto& project = requireProject(workspace, request.projectName);
  const auto* byId = request.testId ? findById(project.tests, *request.testId) : nullptr;
  const auto& test = byId ? *byId : requireTest(project, request.testName.value_or(""));
  auto steps = stepRange(test, request.fromStep, request.toStep);

  if (!workspace.userDefinedInteractions) workspace.userDefinedInteractions.emplace();
  auto& library = *workspace.userDefinedInteractions;
  auto* udi = findByName(library, request.udiName);
  if (udi && !request.overwrite.value_or(false)) {
    throw RequestRefused("The library has a building block named " + inQuotes(request.udiName) +
                             " already. Pass overwrite:true to replace its steps, or choose "
                             "another name.",
                         "udiNameTaken");
  }
  if (!udi) {
    udi = &library.emplace_back();
    udi->id = ids.make("building block", "", request.udiName);
    udi->name = request.udiName;
  }
  udi->steps = std::move(steps);
  udi->parameterNames = parametersOf(udi->steps);
  udi->sourceProjectName = project.name;
  return {udi->id, udi->name, static_cast<std::int64_t>(udi->steps.size()), udi->parameterNames};
}

void deleteUdi(const std::string& name, AgentContext& workspace) {
  auto library = workspace.userDefinedInteractions.value_or(std::vector<Udi>());
  if (!findByName(library, name)) {
    throw RequestRefused("The library has no building block named " + inQuotes(name) + ". " +
                         listing("Building blocks", library));
  }
  std::erase_if(library, [&name](const Udi& udi) { return udi.name == name; });
  workspace.userDefinedInteractions = std::move(library);
}

/// Forgets what explorations charted, and nothing else. A project that nothing was charted of is
/// fine.
void resetWorldMap(const std::string& projectName, AgentContext& workspace) {
  requireProject(workspace, projectName).worldMap.reset();
}

}  // namespace

std::string_view toolOf(Action action) {
  switch (action) {
    case Action::extractUdi:
      return "extract_udi";
    case Action::deleteUdi:
      return "delete_udi";
    case Action::resetWorldMap:
      return "reset_world_map";
  }
  return {};
}

LibraryJob::LibraryJob(AgentLibraryRequest request, const Services& services)
    : Job(request.requestId, toolOf(request.action), "library"),
      request(std::move(request)),
      services(services) {
  if (!this->request.projectName.empty()) state.projectName = this->request.projectName;
}

Job::Advance LibraryJob::advance() {
  try {
    services.workspace.update([this](AgentContext& workspace) { fulfil(workspace); });
  } catch (const RequestRefused& refused) {
    endRefused(refused);
  }
  return Advance::changed;
}

void LibraryJob::fulfil(AgentContext& workspace) {
  switch (request.action) {
    case Action::extractUdi: {
      state.udi = extractUdi(request, workspace, services.ids);
      const auto count = std::to_string(state.udi->stepCount);
      return end(RunStatus::extracted, "Extracted " + inQuotes(request.udiName) + ": " + count +
                                           (count == "1" ? " step." : " steps."));
    }
    case Action::deleteUdi:
      deleteUdi(request.udiName, workspace);
      return end(RunStatus::deleted, "Deleted " + inQuotes(request.udiName) + " from the library.");
    case Action::resetWorldMap:
      resetWorldMap(request.projectName, workspace);
      return end(RunStatus::deleted,
                 "Reset the world map of " + inQuotes(request.projectName) + ".");
  }
}

}  // namespace corvane::standin
