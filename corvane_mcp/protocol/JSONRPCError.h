#pragma once

#include <exception>
#include <optional>
#include <string>

#include "CorvaneCore/json/Record.h"

namespace corvane {

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

}  // namespace corvane
