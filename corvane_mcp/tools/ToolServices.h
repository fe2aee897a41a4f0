#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/paths/AgentPaths.h"
#include "CorvaneCore/text/Uuid.h"
#include "corvane_mcp/app/CorvaneLauncher.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/server/Clock.h"
#include "corvane_mcp/server/Logger.h"
#include "corvane_mcp/server/MCPTool.h"

namespace corvane {

/// What tools work with. Everything outlives the tools and may be used from any thread.
struct ToolServices {
  const AgentPaths& paths;
  const CorvaneLauncher& launcher;
  const ClientIdentity& client;
  const Clock& clock;
  Logger& logger;
};

/// The app touches what it publishes about live work every 20 seconds or so. After this long, about
/// four and a half heartbeats missed, tools say that nothing moves.
inline constexpr std::int64_t staleAfterSeconds = 91;

/// What every tool that hands work to Corvane.app does alike.
namespace Dispatch {

/// A request as every tool begins it: with a fresh id, who asks and when.
template <class Request>
[[nodiscard]] Request newRequest(const ToolServices& services) {
  Request request;
  request.requestId = makeRequestId();
  request.clientName = services.client.name();
  request.createdAt = services.clock.date();
  return request;
}

/// Writes a request into its drop folder, gives up the turn to do so, and logs "Wrote
/// <kind><detail>: <path>". Returns the path. Throws JSONRPCError "Failed to write <kind>: …" when
/// that fails.
template <class Request>
std::string writeRequest(const Request& request, std::string_view kind,
                         const ToolServices& services, DispatchOrder::Turn& turn,
                         std::string_view detail = {}) {
  try {
    request.write(services.paths);
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       std::string("Failed to write ").append(kind) + ": " + error.what());
  }
  turn.giveUp();
  std::string path = displayPath(Request::fileURL(request.requestId, services.paths));
  services.logger.info(std::string("Wrote ").append(kind).append(detail) + ": " + path);
  return path;
}

/// What came of making sure that the app runs.
struct Launch {
  /// The bundle, when it was found.
  std::optional<std::filesystem::path> app;
  bool succeeded = false;

  /// The bundle's path, followed by a remark when the user has to open the app.
  [[nodiscard]] std::string describe() const;
};

/// Locates the app and starts it unless it runs already.
[[nodiscard]] Launch launchApp(const ToolServices& services);

/// The same where nobody asks what came of it: an app that is not there is passed over in silence.
void launchAppIfFound(const ToolServices& services);

/// The path shown for an app bundle that may not have been found.
[[nodiscard]] std::string describeApp(const std::optional<std::filesystem::path>& app);

/// A ready-made call to copy: get_result {"requestId":"…","waitSeconds":…}.
[[nodiscard]] std::string getResultCall(std::string_view requestId, int waitSeconds);

}  // namespace Dispatch

}  // namespace corvane
