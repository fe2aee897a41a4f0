#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "CorvaneCore/json/Record.h"

// JSON-RPC 2.0, as far as the server speaks it.

namespace corvane {

/// The id of a request, echoed in its reply in the kind it came in.
struct JSONRPCID {
  std::variant<std::string, std::int64_t, std::nullptr_t> value = nullptr;

  friend bool operator==(const JSONRPCID&, const JSONRPCID&) = default;
};

template <>
struct Codec<JSONRPCID> {
  static JSONRPCID decode(AnyCodable&& value, const DecodePath& at) {
    if (value.isNull()) return {};
    if (const auto* integer = value.integer()) return {*integer};
    if (const auto* text = value.string()) return {*text};
    at.fail("JSON-RPC id must be string, integer, or null");
  }

  static void encode(const JSONRPCID& id, JsonSink& sink) {
    if (const auto* text = std::get_if<std::string>(&id.value)) {
      sink.string(*text);
    } else if (const auto* integer = std::get_if<std::int64_t>(&id.value)) {
      sink.integer(*integer);
    } else {
      sink.null();
    }
  }
};

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

/// A protocol-level failure: the `error` of a reply, and what is thrown to produce one.
struct JSONRPCError : std::exception {
  static constexpr std::int64_t parseError = -32700;
  static constexpr std::int64_t methodNotFound = -32601;
  static constexpr std::int64_t invalidParams = -32602;
  static constexpr std::int64_t internalError = -32603;

  std::int64_t code = internalError;
  std::string message;
  std::optional<AnyCodable> data;

  JSONRPCError() = default;
  JSONRPCError(std::int64_t code, std::string message) : code(code), message(std::move(message)) {}

  [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

  static constexpr auto fields() {
    using R = JSONRPCError;
    return FieldList(field("code", &R::code), field("message", &R::message),
                     field("data", &R::data));
  }
};

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
