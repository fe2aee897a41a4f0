#pragma once

#include <optional>
#include <string>

namespace corvane {

/// The `requestId` argument that tools take about a dispatched request.
namespace RequestIdArgument {

/// The pattern that the schemas publish.
inline constexpr const char* pattern =
    "^[0-9a-fA-F]{8}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{4}-[0-9a-fA-F]{12}$";

/// The refusal of a value that is no UUID.
[[nodiscard]] inline std::string invalidText(const std::optional<std::string>& given) {
  return "error:invalid_request_id\n\nrequestId must be the UUID returned by create_test/run_test. "
         "Got: '" +
         given.value_or("<missing>") + "'";
}

}  // namespace RequestIdArgument

}  // namespace corvane
