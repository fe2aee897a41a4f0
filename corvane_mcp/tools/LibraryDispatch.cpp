#include "corvane_mcp/tools/LibraryDispatch.h"

#include "corvane_mcp/tools/Dispatch.h"

namespace corvane {

namespace {

/// How the log tells the actions apart; extractions came first and are not named.
std::string describe(AgentLibraryRequest::Action action) {
  if (action == AgentLibraryRequest::Action::extractUdi) return {};
  return std::string(" (").append(rawValue(action)) + ")";
}

}  // namespace

ToolsCallResult dispatchLibraryRequest(const AgentLibraryRequest& request,
                                       const LibraryAnswer& answer, const ToolServices& services) {
  Dispatch::writeRequest(request, "library request", services, describe(request.action));
  Dispatch::launchAppIfFound(services);
  std::string text = std::string(answer.what).append(" dispatched to Corvane.\n");
  text += "\n  requestId:  " + request.requestId;
  text += answer.details;
  text += "\n\nNext: call " + Dispatch::getResultCall(request.requestId, 60) + answer.outcome;
  return ToolsCallResult::success(std::move(text));
}

}  // namespace corvane
