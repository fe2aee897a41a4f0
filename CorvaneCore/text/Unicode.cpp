#include "CorvaneCore/text/Unicode.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace corvane {

namespace {

/// One character at the front of a text; `codePoint` is negative when the bytes are not UTF-8.
struct Character {
  utf8proc_int32_t codePoint;
  std::size_t length;
};

Character firstCharacter(std::string_view text) {
  Character character{-1, 1};
  const auto length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                       static_cast<utf8proc_ssize_t>(text.size()), &character.codePoint);
  if (length < 0) return {-1, 1};
  character.length = static_cast<std::size_t>(length);
  return character;
}

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::size_t lastCharacterStart(std::string_view text) {
  std::size_t start = text.size() - 1;
  while (start > 0 && isContinuation(text[start])) --start;
  return start;
}

bool isWhitespace(utf8proc_int32_t codePoint) {
  if ((codePoint >= 0x09 && codePoint <= 0x0D) || codePoint == 0x85) return true;
  if (codePoint < 0) return false;
  const auto category = utf8proc_category(codePoint);
  return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
         category == UTF8PROC_CATEGORY_ZP;
}

}  // namespace

bool isValidUtf8(std::string_view text) {
  while (!text.empty()) {
    if (static_cast<unsigned char>(text.front()) < 0x80) {
      text.remove_prefix(1);
      continue;
    }
    const Character character = firstCharacter(text);
    if (character.codePoint < 0) return false;
    text.remove_prefix(character.length);
  }
  return true;
}

std::string toValidUtf8(std::string_view text) {
  std::string valid;
  valid.reserve(text.size());
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    valid += character.codePoint < 0 ? std::string_view("\xEF\xBF\xBD")
                                     : text.substr(0, character.length);
    text.remove_prefix(character.length);
  }
  return valid;
}

void appendUtf8(std::string& text, char32_t codePoint) {
  std::array<utf8proc_uint8_t, 4> bytes;
  const auto length = utf8proc_encode_char(static_cast<utf8proc_int32_t>(codePoint), bytes.data());
  text.append(bytes.begin(), bytes.begin() + length);
}

std::string_view trimWhitespace(std::string_view text) {
  while (!text.empty()) {
    const Character first = firstCharacter(text);
    if (!isWhitespace(first.codePoint)) break;
    text.remove_prefix(first.length);
  }
  while (!text.empty()) {
    const std::size_t start = lastCharacterStart(text);
    if (!isWhitespace(firstCharacter(text.substr(start)).codePoint)) break;
    text = text.substr(0, start);
  }
  return text;
}

std::size_t countCharacters(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

std::size_t countColumns(std::string_view text) {
  // Asks for the character before it to be shown as a picture, which is wide.
  constexpr utf8proc_int32_t pictureSelector = 0xFE0F;
  std::size_t columns = 0;
  int last = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    text.remove_prefix(character.length);
    const bool widens = character.codePoint == pictureSelector && last == 1;
    last = widens ? 1 : utf8proc_charwidth(character.codePoint);
    columns += static_cast<std::size_t>(last);
  }
  return columns;
}

std::string asciiLowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

namespace {

bool isControl(utf8proc_int32_t codePoint) {
  if ((codePoint >= 0 && codePoint < 0x20) || (codePoint >= 0x7F && codePoint < 0xA0)) return true;
  // The two separators end a line for some readers of text, and the others turn the text around
  // them.
  constexpr utf8proc_int32_t lineSeparator = 0x2028;
  constexpr utf8proc_int32_t rightToLeftOverride = 0x202E;
  constexpr utf8proc_int32_t leftToRightIsolate = 0x2066;
  constexpr utf8proc_int32_t popDirectionalIsolate = 0x2069;
  return codePoint == 0x061C || codePoint == 0x200E || codePoint == 0x200F ||
         (codePoint >= lineSeparator && codePoint <= rightToLeftOverride) ||
         (codePoint >= leftToRightIsolate && codePoint <= popDirectionalIsolate);
}

}  // namespace

std::string escapeControls(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    const auto codePoint = character.codePoint;
    if (codePoint == '\n') {
      escaped += "\\n";
    } else if (codePoint == '\r') {
      escaped += "\\r";
    } else if (codePoint == '\t') {
      escaped += "\\t";
    } else if (isControl(codePoint)) {
      std::array<char, 8> unit;
      std::snprintf(unit.data(), unit.size(), "\\u%04x", static_cast<unsigned>(codePoint));
      escaped += unit.data();
    } else {
      escaped += text.substr(0, character.length);
    }
    text.remove_prefix(character.length);
  }
  return escaped;
}

namespace {

/// The one letter that stands for `letter` in every case. Marks have no case of their own.
utf8proc_int32_t foldLetter(utf8proc_int32_t letter, void*) {
  if (utf8proc_category(letter) == UTF8PROC_CATEGORY_MN) return letter;
  std::array<utf8proc_int32_t, 4> folded;
  int boundClass = 0;
  const auto length =
      utf8proc_decompose_char(letter, folded.data(), folded.size(), UTF8PROC_CASEFOLD, &boundClass);
  return length == 1 ? folded.front() : utf8proc_tolower(letter);
}

std::string map(std::string_view text, int options, utf8proc_custom_func letterwise) {
  utf8proc_uint8_t* mapped = nullptr;
  const auto length = utf8proc_map_custom(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                          static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                                          static_cast<utf8proc_option_t>(UTF8PROC_STABLE | options),
                                          letterwise, nullptr);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  if (length < 0) throw std::bad_alloc();
  return {reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length)};
}

}  // namespace

std::string foldCase(std::string_view text) {
  // Taken apart first: the dot of a capital dotted I is a mark, and a mark is not folded.
  return map(map(text, UTF8PROC_DECOMPOSE, nullptr), UTF8PROC_COMPOSE, foldLetter);
}

namespace {

struct CodePoint {
  utf8proc_int32_t value;
  std::size_t length;
};

/// The code point at the front of `text`, which is not empty; U+FFFD for a byte that is not UTF-8.
CodePoint firstCodePoint(std::string_view text) {
  utf8proc_int32_t value = 0;
  const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                       static_cast<utf8proc_ssize_t>(text.size()), &value);
  if (length < 1) return {0xFFFD, 1};
  return {value, static_cast<std::size_t>(length)};
}

bool isKept(utf8proc_int32_t codePoint) {
  if (codePoint == '-' || codePoint == '_') return true;
  switch (utf8proc_category(codePoint)) {
    case UTF8PROC_CATEGORY_LU:
    case UTF8PROC_CATEGORY_LL:
    case UTF8PROC_CATEGORY_LT:
    case UTF8PROC_CATEGORY_LM:
    case UTF8PROC_CATEGORY_LO:
    case UTF8PROC_CATEGORY_MN:
    case UTF8PROC_CATEGORY_MC:
    case UTF8PROC_CATEGORY_ME:
    case UTF8PROC_CATEGORY_ND:
    case UTF8PROC_CATEGORY_NL:
    case UTF8PROC_CATEGORY_NO:
      return true;
    default:
      return false;
  }
}

}  // namespace

std::string fileNamePart(std::string_view text) {
  std::string part;
  while (!text.empty()) {
    const CodePoint first = firstCodePoint(text);
    part += isKept(first.value) ? text.substr(0, first.length) : std::string_view("-");
    text.remove_prefix(first.length);
  }
  return part;
}

std::string_view shortenedTo(std::string_view text, std::size_t bytes) {
  if (text.size() <= bytes) return text;
  std::size_t cut = 0;
  std::size_t read = 0;
  utf8proc_int32_t previous = 0;
  utf8proc_int32_t state = 0;
  while (read <= bytes) {
    const CodePoint next = firstCodePoint(text.substr(read));
    if (utf8proc_grapheme_break_stateful(previous, next.value, &state)) cut = read;
    previous = next.value;
    read += next.length;
  }
  return text.substr(0, cut);
}

}  // namespace corvane
