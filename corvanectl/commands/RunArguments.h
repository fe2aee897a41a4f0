#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/commands/Invocation.h"

namespace corvane {

/// The arguments with which run_test does what `command` asks for.
[[nodiscard]] AnyCodable::Object runArguments(const RunCommand& command);

/// The request id that the answer of a dispatching tool names, if it does.
[[nodiscard]] std::optional<std::string> dispatchedRequestId(std::string_view answer);

}  // namespace corvane
