#include "CorvaneCore/text/Utf8.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cstdio>

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

std::string asciiLowercase(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

std::string escapeControls(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    const auto codePoint = character.codePoint;
    // The two separators end a line for some readers of text although they are not controls.
    const bool control = (codePoint >= 0 && codePoint < 0x20) ||
                         (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == 0x2028 ||
                         codePoint == 0x2029;
    if (codePoint == '\n') {
      escaped += "\\n";
    } else if (codePoint == '\r') {
      escaped += "\\r";
    } else if (codePoint == '\t') {
      escaped += "\\t";
    } else if (control) {
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

}  // namespace corvane
