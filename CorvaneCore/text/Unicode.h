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

/// How many columns `text` takes on a terminal. `text` is valid UTF-8.
[[nodiscard]] std::size_t countColumns(std::string_view text);

/// `text` with its ASCII capitals in lower case; other characters stand as they are.
[[nodiscard]] std::string asciiLowercase(std::string_view text);

/// `text` with every control character written as an escape, those included that change the
/// direction of text, so that it stays on one line and what stands beside it in its place.
[[nodiscard]] std::string escapeControls(std::string_view text);

/// `text` in the form in which texts that differ only in case, or in how an accent is composed, are
/// equal: É and é, Σ and ς. Independent of the locale. A letter stays one letter, so that ß does
/// not become ss and "Maße" and "Masse" remain two names. `text` is valid UTF-8.
[[nodiscard]] std::string foldCase(std::string_view text);

/// The longest name, in bytes, that file systems take.
inline constexpr std::size_t longestFileName = 255;

/// `text` as a part of a file name: letters, marks, digits and other numbers of any script, "-" and
/// "_" stay, every other character becomes "-". `text` is valid UTF-8.
[[nodiscard]] std::string fileNamePart(std::string_view text);

/// The beginning of `text` that fits into `bytes`, cut between two characters as a reader sees them
/// (a letter keeps its accents). `text` is valid UTF-8.
[[nodiscard]] std::string_view shortenedTo(std::string_view text, std::size_t bytes);

}  // namespace corvane
