#include <unistd.h>

#include "CorvaneCore/requests/Requests.h"
#include "CorvaneCore/results/AgentRunResult.h"
#include "CorvaneCore/results/AnswerTexts.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/tools/ToolArguments.h"
#include "corvane_mcp/tools/Tools.h"

namespace corvane {

namespace {

constexpr std::string_view name = "cancel_run";

constexpr std::string_view description =
    "Cancel a Corvane run request you no longer need (e.g. you re-edited the code and the queued "
    "run is stale).\n\nPass the requestId returned by run_test or create_test. Requests that "
    "Corvane has not started yet (pending or queued) are cancelled outright. A run that is already "
    "executing is aborted cooperatively at the next step boundary. Either way, poll get_result — "
    "it reports status \"cancelled\" once the cancellation lands.";

struct Arguments {
  std::optional<std::string> requestId;

  static auto arguments() {
    return std::tuple(
        argument("requestId", &Arguments::requestId, "The requestId of the run to cancel.")
            .required()
            .with("pattern", RequestIdArgument::pattern));
  }
};

/// False when the app has the request already, when there never was one, or when what lies in its
/// place cannot be removed as a file: the app is asked then.
bool removeWaitingRequest(const std::string& requestId, const AgentPaths& paths) {
  const auto file = AgentRunRequest::fileURL(requestId, paths);
  // The app may take the file at any moment, so removing it is the only way to know who has it.
  return fileExists(file) && ::unlink(file.c_str()) == 0;
}

void writeCancelledResult(const std::string& requestId, const ToolServices& services) {
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

void dropCancelMarker(const std::string& requestId, const ToolServices& services) {
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

ToolsCallResult call(const Arguments& arguments, const ToolServices& services) {
  const auto id = parseRequestId(arguments.requestId.value_or(""));
  if (!id) return ToolsCallResult::failure(RequestIdArgument::invalidText(arguments.requestId));

  if (removeWaitingRequest(*id, services.paths)) {
    writeCancelledResult(*id, services);
    services.logger.info("cancel_run: removed unconsumed request " + *id);
    std::string text = "Run request " + *id + " cancelled (Corvane had not picked it up yet).";
    return ToolsCallResult::success(text.append(AnswerTexts::cancelledNote));
  }
  dropCancelMarker(*id, services);
  services.logger.info("cancel_run: dropped cancel marker for " + *id);
  std::string text = "Cancellation requested for " + *id +
                     ". A queued run is cancelled immediately; an executing run is aborted at the "
                     "next step boundary.";
  return ToolsCallResult::success(text.append(AnswerTexts::cancellingNote));
}

}  // namespace

MCPTool makeCancelRunTool(const ToolServices& services) {
  return {
      name, description, [] { return schemaOf<Arguments>(OtherProperties::notMentioned); },
      [services](ToolCall sent) { return call(takeArguments<Arguments>(sent, name), services); }};
}

}  // namespace corvane
