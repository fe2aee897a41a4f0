#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane {

/// Whether `text` is valid UTF-8.
[[nodiscard]] bool isValidUtf8(std::string_view text);

/// `text` with every byte that is not part of valid UTF-8 replaced by U+FFFD: for foreign text
/// (file names, system messages) that goes into JSON or a log line.
[[nodiscard]] std::string toValidUtf8(std::string_view text);

/// Appends a Unicode scalar value to `text`.
void appendUtf8(std::string& text, char32_t codePoint);

/// `text` without the Unicode white space and newlines at its ends. `text` is valid UTF-8.
[[nodiscard]] std::string_view trimWhitespace(std::string_view text);

/// How many code points `text` has. `text` is valid UTF-8.
[[nodiscard]] std::size_t countCharacters(std::string_view text);

/// `text` with its ASCII capitals in lower case; other characters stand as they are.
[[nodiscard]] std::string asciiLowercase(std::string_view text);

/// `text` with every control character written as an escape, so that it stays on one line.
[[nodiscard]] std::string escapeControls(std::string_view text);

}  // namespace corvane
