#include "corvane_standin/library/LibraryJob.h"

#include <string_view>
#include <utility>

#include "corvane_standin/library/UdiLibrary.h"
#include "corvane_standin/workspace/Lookup.h"

namespace corvane::standin {

namespace {

using Action = AgentLibraryRequest::Action;

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

}  // namespace

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
      state.udi = extractUdi(request, workspace);
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
