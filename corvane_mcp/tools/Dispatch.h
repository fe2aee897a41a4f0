#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>

#include "corvane_mcp/protocol/JSONRPCError.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// What every tool that hands work to Corvane.app does alike.
namespace Dispatch {

/// What came of making sure that the app runs.
struct Launch {
  /// The bundle's path, or "<not found>".
  std::string appPath;
  bool succeeded = false;

  /// The path, followed by a remark when the user has to open the app.
  [[nodiscard]] std::string describe() const;
};

/// Locates the app and starts it unless it runs already.
[[nodiscard]] Launch launchApp(const ToolServices& services);

/// The path shown for an app bundle that may not have been found.
[[nodiscard]] std::string describeApp(const std::optional<std::filesystem::path>& app);

/// A ready-made call to copy: get_result {"requestId":"…","waitSeconds":…}.
[[nodiscard]] std::string getResultCall(std::string_view requestId, int waitSeconds);

/// Writes a request into its drop folder and logs "Wrote <kind>: <path>". Returns the path.
/// Throws JSONRPCError "Failed to write <kind>: …" when that fails.
template <class Request>
std::string writeRequest(const Request& request, std::string_view kind,
                         const ToolServices& services) {
  try {
    request.write(services.paths);
  } catch (const std::exception& error) {
    throw JSONRPCError(JSONRPCError::internalError,
                       std::string("Failed to write ").append(kind) + ": " + error.what());
  }
  std::string path = displayPath(Request::fileURL(request.requestId, services.paths));
  services.logger.info(std::string("Wrote ").append(kind) + ": " + path);
  return path;
}

}  // namespace Dispatch

}  // namespace corvane
