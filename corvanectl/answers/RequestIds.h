#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "corvanectl/answers/StatusAnswer.h"
#include "corvanectl/commands/Session.h"

namespace corvane::ctl {

/// What stands for the most recent request.
inline constexpr std::string_view lastRequest = "last";

/// The whole id of the request that a person names: "last", the beginning of an id of which
/// get_status tells, or an id. Asks the server only where it must. Throws UsageError when no
/// request or more than one fits, or none can, and what Session::callTool throws.
[[nodiscard]] std::string wholeRequestId(const std::string& named, Session& session);

/// The same among these requests, the most recent first.
[[nodiscard]] std::string wholeRequestId(const std::string& named,
                                         const std::vector<KnownRequest>& requests);

}  // namespace corvane::ctl
