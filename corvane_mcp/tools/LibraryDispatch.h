#pragma once

#include <string>
#include <string_view>

#include "CorvaneCore/requests/Requests.h"
#include "corvane_mcp/protocol/ToolsCallResult.h"
#include "corvane_mcp/tools/ToolServices.h"

namespace corvane {

/// How the answer to a dispatched library request reads.
struct LibraryAnswer {
  /// What was dispatched, e.g. "Deletion".
  std::string_view what;
  /// Lines after the one with the request id.
  std::string details;
  /// What follows the ready-made get_result call.
  std::string outcome;
};

/// Writes a library request, makes sure that the app runs when it can be found, and words the
/// answer. Throws JSONRPCError when the request cannot be written.
[[nodiscard]] ToolsCallResult dispatchLibraryRequest(const AgentLibraryRequest& request,
                                                     const LibraryAnswer& answer,
                                                     const ToolServices& services);

}  // namespace corvane
