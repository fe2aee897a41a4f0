#include "corvanectl/terminal/DisplayText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::ctl {

namespace {

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// How many columns a character may take, told from its first byte. Wide characters begin at
/// U+1100; calling a narrow one wide only cuts a text a little earlier.
std::size_t widestColumns(char firstByte) {
  return static_cast<unsigned char>(firstByte) >= 0xE1 ? 2 : 1;
}

bool continuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

bool isSmallLetter(char c) {
  return c >= 'a' && c <= 'z';
}

/// Whether the punctuation before `rest` ends a sentence; that of "e.g. this" does not.
bool beginsNewSentence(std::string_view rest) {
  if (rest.empty()) return true;
  if (!isBlank(rest.front())) return false;
  while (!rest.empty() && isBlank(rest.front())) rest.remove_prefix(1);
  return rest.empty() || !isSmallLetter(rest.front());
}

}  // namespace

std::string oneLine(std::string_view text) {
  std::string line;
  for (const char c : text) {
    if (!isBlank(c)) {
      line += c;
    } else if (!line.empty() && line.back() != ' ') {
      line += ' ';
    }
  }
  if (line.ends_with(' ')) line.pop_back();
  return escapeControls(toValidUtf8(line));
}

std::string cleanLines(std::string_view text) {
  const std::string valid = toValidUtf8(text);
  std::string_view rest = trimWhitespace(valid);
  std::string lines;
  while (!rest.empty()) {
    std::string line(rest.substr(0, rest.find('\n')));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.ends_with('\r')) line.pop_back();
    std::ranges::replace(line, '\t', ' ');
    lines += escapeControls(line);
    if (!rest.empty()) lines += '\n';
  }
  return lines;
}

std::size_t widestColumns(std::string_view text) {
  std::size_t columns = 0;
  for (const char c : text) columns += continuesCharacter(c) ? 0 : widestColumns(c);
  return columns;
}

std::string cutToColumns(std::string_view text, std::size_t columns) {
  constexpr std::string_view ellipsis = "…";
  const std::size_t ellipsisColumns = widestColumns(ellipsis.front());
  std::size_t used = 0;
  std::size_t cut = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (continuesCharacter(text[i])) continue;
    if (used + ellipsisColumns <= columns) cut = i;
    used += widestColumns(text[i]);
    if (used <= columns) continue;
    std::string shortened(text.substr(0, cut));
    if (ellipsisColumns <= columns) shortened += ellipsis;
    return shortened;
  }
  return std::string(text);
}

std::string wrapToColumns(std::string_view text, std::size_t columns, std::size_t indent) {
  std::string wrapped;
  std::size_t used = indent;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const std::size_t width = widestColumns(word);
    const bool beginsLine = used == indent;
    if (!beginsLine && used + 1 + width > columns) {
      wrapped.append("\n").append(indent, ' ');
      used = indent;
    } else if (!beginsLine) {
      wrapped += ' ';
      ++used;
    }
    wrapped += word;
    used += width;
  }
  return wrapped;
}

std::string displaySeconds(double seconds) {
  std::array<char, 32> text;
  const double shown = std::clamp(seconds, 0.0, 1e9);
  if (shown < 9.95) {
    std::snprintf(text.data(), text.size(), "%g s", std::round(shown * 10) / 10);
    return text.data();
  }
  const auto whole = static_cast<std::int64_t>(std::llround(shown));
  if (whole < 60) return std::to_string(whole) + " s";
  return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

std::string_view firstSentence(std::string_view text) {
  text = text.substr(0, text.find("\n\n"));
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool stop = text[i] == '.' || text[i] == '!' || text[i] == '?';
    if (stop && beginsNewSentence(text.substr(i + 1))) return text.substr(0, i + 1);
  }
  return text;
}

}  // namespace corvane::ctl
