#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"
#include "corvane_mcp/protocol/JSONRPCError.h"
#include "corvane_mcp/protocol/JSONRPCID.h"

namespace corvane {

/// One reply. Exactly one of `result` and `error` is set in every reply the server writes. A Result
/// that is a record of its own is written without a detour through AnyCodable.
template <class Result>
struct JSONRPCResponseWith {
  std::string jsonrpc = "2.0";
  /// The request's id, or null when it could not be known.
  JSONRPCID id;
  std::optional<Result> result;
  std::optional<JSONRPCError> error;

  [[nodiscard]] static JSONRPCResponseWith success(JSONRPCID id, Result result) {
    return {.id = std::move(id), .result = std::move(result), .error = std::nullopt};
  }
  [[nodiscard]] static JSONRPCResponseWith failure(JSONRPCID id, JSONRPCError error) {
    return {.id = std::move(id), .result = std::nullopt, .error = std::move(error)};
  }

  static constexpr auto fields() {
    using R = JSONRPCResponseWith;
    return FieldList(field("jsonrpc", &R::jsonrpc), field("id", &R::id),
                     field("result", &R::result), field("error", &R::error));
  }
};

using JSONRPCResponse = JSONRPCResponseWith<AnyCodable>;

}  // namespace corvane
