#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace corvane {

/// A JSON number by its value: an integer when it is whole and fits 64 bits, however it is spelled.
using JsonNumber = std::variant<std::int64_t, double>;

/// Reads a JSON number literal: exactly when its value is such an integer, else as the nearest
/// double, whole or not. Nothing when `literal` is not one, or when its value lies beyond a double.
[[nodiscard]] std::optional<JsonNumber> parseJsonNumber(std::string_view literal);

/// Whether parseJsonNumber() would read `literal`.
[[nodiscard]] bool isJsonNumber(std::string_view literal);

/// The whole number that `text` spells with an optional sign and decimal digits, when it fits 64
/// bits and nothing else stands in `text`.
[[nodiscard]] std::optional<std::int64_t> parseInteger(std::string_view text);

/// What stands for `content`, the text between the quotes of a JSON string, once its escapes are
/// resolved: `content` itself when it has none, else `buffer`, which is overwritten. Throws
/// DecodeError for a malformed escape and for a surrogate without its other half.
[[nodiscard]] std::string_view unescapeJson(std::string_view content, std::string& buffer);

}  // namespace corvane
