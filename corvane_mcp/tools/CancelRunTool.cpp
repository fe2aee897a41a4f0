#include "corvane_mcp/tools/CancelRunTool.h"

#include <unistd.h>

#include <cerrno>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/protocol/JSONRPCError.h"
#include "corvane_mcp/tools/RequestIdArgument.h"
#include "corvane_mcp/tools/ToolArguments.h"

namespace corvane {

namespace {

struct Arguments {
  std::optional<std::string> requestId;

  static auto arguments() {
    return std::tuple(
        argument("requestId", &Arguments::requestId, "The requestId of the run to cancel.")
            .required()
            .with("pattern", RequestIdArgument::pattern));
  }
};

}  // namespace

std::string_view CancelRunTool::description() const {
  return "Cancel a Corvane run request you no longer need (e.g. you re-edited the code and the "
         "queued run is stale).\n\nPass the requestId returned by run_test or create_test. "
         "Requests "
         "that Corvane has not started yet (pending or queued) are cancelled outright. A run that "
         "is already executing is aborted cooperatively at the next step boundary. Either way, "
         "poll get_result — it reports status \"cancelled\" once the cancellation lands.";
}

AnyCodable CancelRunTool::inputSchema() const {
  return schemaOf<Arguments>(OtherProperties::notMentioned);
}

Task<ToolsCallResult> CancelRunTool::call(ToolCall call) const {
  const auto given = takeArguments<Arguments>(call, name()).requestId;
  const auto id = parseRequestId(given.value_or(""));
  if (!id) co_return ToolsCallResult::failure(RequestIdArgument::invalidText(given));

  if (removeWaitingRequest(*id)) {
    writeCancelledResult(*id);
    services.logger.info("cancel_run: removed unconsumed request " + *id);
    co_return ToolsCallResult::success("Run request " + *id +
                                       " cancelled (Corvane had not picked it up yet). get_result "
                                       "now reports status \"cancelled\".");
  }
  dropCancelMarker(*id);
  services.logger.info("cancel_run: dropped cancel marker for " + *id);
  co_return ToolsCallResult::success(
      "Cancellation requested for " + *id +
      ". A queued run is cancelled immediately; an executing run is aborted at the next step "
      "boundary. Poll get_result until it reports status \"cancelled\" (or a terminal result, if "
      "the run finished before the cancellation landed).");
}

bool CancelRunTool::removeWaitingRequest(const std::string& requestId) const {
  const auto file = AgentRunRequest::fileURL(requestId, services.paths);
  // The app may take the file at any moment, so removing it is the only way to know who has it.
  if (::unlink(file.c_str()) == 0) return true;
  if (errno == ENOENT || errno == ENOTDIR) return false;
  const FileError error("remove", file, {errno, std::generic_category()});
  throw JSONRPCError(JSONRPCError::internalError,
                     std::string("Failed to remove run request: ") + error.what());
}

void CancelRunTool::writeCancelledResult(const std::string& requestId) const {
  AgentRunResult result;
  result.requestId = requestId;
  result.source = "run_test";
  result.setStatus(RunStatus::cancelled);
  result.updatedAt = services.clock.date();
  result.message = "Cancelled by cancel_run before Corvane picked the request up.";
  try {
    result.write(services.paths);
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       "Run request " + requestId +
                           " was removed before Corvane picked it up, but its cancelled result "
                           "could not be recorded: " +
                           error.what());
  }
}

void CancelRunTool::dropCancelMarker(const std::string& requestId) const {
  services.paths.ensureAgentRunRequestsDirectoryExists();
  CancelMarker marker;
  marker.requestId = requestId;
  marker.createdAt = services.clock.date();
  try {
    marker.write(services.paths);
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       std::string("Failed to write cancel marker: ") + error.what());
  }
}

}  // namespace corvane
