#pragma once

#include <string>
#include <variant>

#include "CorvaneCore/json/Codec.h"

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

}  // namespace corvane
