#pragma once

#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"
#include "corvane_mcp/protocol/JSONRPCID.h"

namespace corvane {

/// One message from the client. Without an id (or with a null one) it is a notification, which
/// never gets a reply.
struct JSONRPCRequest {
  /// The protocol tag; its value is not checked.
  std::string jsonrpc;
  std::optional<JSONRPCID> id;
  std::string method;
  std::optional<AnyCodable> params;

  static constexpr auto fields() {
    using R = JSONRPCRequest;
    return FieldList(field("jsonrpc", &R::jsonrpc), field("id", &R::id),
                     field("method", &R::method), field("params", &R::params));
  }
};

}  // namespace corvane
