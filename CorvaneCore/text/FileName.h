#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// The longest name, in bytes, that file systems take.
inline constexpr std::size_t longestFileName = 255;

/// `text` as a part of a file name: letters, marks, digits and other numbers of any script, "-" and
/// "_" stay, every other character becomes "-". `text` is valid UTF-8.
[[nodiscard]] std::string fileNamePart(std::string_view text);

/// The beginning of `text` that fits into `bytes`, cut between two characters as a reader sees them
/// (a letter keeps its accents). `text` is valid UTF-8.
[[nodiscard]] std::string_view shortenedTo(std::string_view text, std::size_t bytes);

}  // namespace corvane
