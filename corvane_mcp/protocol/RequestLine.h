#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/JsonReader.h"
#include "corvane_mcp/protocol/JsonRpc.h"

namespace corvane {

/// A line from the client.
struct RequestLine {
  /// Without the arguments of a tool's call, which are the largest part of it by far.
  JSONRPCRequest request;
  /// These, as the JSON text that came, known to be valid: the tool makes of it what it needs.
  std::optional<std::string> arguments;
};

/// Throws DecodeError when `line` is no request.
[[nodiscard]] RequestLine readRequestLine(std::string_view line, JsonReader& reader);

}  // namespace corvane
