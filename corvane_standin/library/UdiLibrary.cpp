#include "corvane_standin/library/UdiLibrary.h"

#include <algorithm>
#include <vector>

#include "CorvaneCore/text/Uuid.h"
#include "corvane_standin/workspace/Changes.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

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

}  // namespace

AgentRunResult::UdiInfo extractUdi(const AgentLibraryRequest& request, AgentContext& workspace) {
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
    udi->id = makeRequestId();
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

void resetWorldMap(const std::string& projectName, AgentContext& workspace) {
  requireProject(workspace, projectName).worldMap.reset();
}

}  // namespace corvane::standin
