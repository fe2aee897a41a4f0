#include "tests/sessions/TextDifference.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace corvane::testing {

namespace {

constexpr std::size_t contextBefore = 60;
constexpr std::size_t contextAfter = 160;

bool insideCharacter(std::string_view text, std::size_t position) {
  return position < text.size() && (static_cast<unsigned char>(text[position]) & 0xC0) == 0x80;
}

/// A text on one line: control characters stand as their numbers, so that a line feed does not look
/// like the escape of one.
std::string onOneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x20) {
      line += c;
      continue;
    }
    std::array<char, 16> number;
    std::snprintf(number.data(), number.size(), "⟨%02X⟩", static_cast<unsigned>(c));
    line += number.data();
  }
  return line;
}

/// A part of a text.
std::string shown(std::string_view text, std::size_t from, std::size_t to) {
  from = std::min(from, text.size());
  to = std::min(to, text.size());
  while (insideCharacter(text, to)) ++to;
  return (from > 0 ? "…" : "") + onOneLine(text.substr(from, to - from)) +
         (to < text.size() ? "…" : "");
}

/// How many columns a text takes, counting every character as one.
std::size_t width(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

}  // namespace

std::string describeDifference(std::string_view expected, std::string_view received,
                               std::size_t position) {
  while (position > 0 &&
         (insideCharacter(expected, position) || insideCharacter(received, position)))
    --position;
  std::size_t from = position > contextBefore ? position - contextBefore : 0;
  while (from > 0 && insideCharacter(expected, from)) --from;
  const std::size_t to = position + contextAfter;
  const std::string before =
      (from > 0 ? "…" : "") + onOneLine(expected.substr(from, position - from));
  return "  expected: " + shown(expected, from, to) + "\n  received: " + shown(received, from, to) +
         "\n            " + std::string(width(before), ' ') + "^ byte " + std::to_string(position);
}

}  // namespace corvane::testing
