#include "CorvaneCore/json/JsonString.h"

#include <charconv>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/text/Utf8.h"

namespace corvane {

namespace {

[[noreturn]] void failMalformed() {
  throw DecodeError("not valid JSON: a string holds a malformed escape");
}

[[noreturn]] void failLoneSurrogate() {
  throw DecodeError("not valid JSON: a string holds an escaped lone surrogate");
}

constexpr bool isHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool isLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// Takes the four digits of a "\uXXXX" escape off `rest`.
char32_t takeCodeUnit(std::string_view& rest) {
  constexpr std::size_t digits = 4;
  if (rest.size() < digits) failMalformed();
  std::uint32_t unit = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + digits, unit, 16);
  if (error != std::errc{} || end != rest.data() + digits) failMalformed();
  rest.remove_prefix(digits);
  return unit;
}

char32_t takeCodePoint(std::string_view& rest) {
  const char32_t unit = takeCodeUnit(rest);
  if (isLowSurrogate(unit)) failLoneSurrogate();
  if (!isHighSurrogate(unit)) return unit;
  if (!rest.starts_with("\\u")) failLoneSurrogate();
  rest.remove_prefix(2);
  const char32_t low = takeCodeUnit(rest);
  if (!isLowSurrogate(low)) failLoneSurrogate();
  return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

/// The character that a backslash and `letter` stand for.
char plainEscape(char letter) {
  switch (letter) {
    case '"':
    case '\\':
    case '/':
      return letter;
    case 'b':
      return '\b';
    case 'f':
      return '\f';
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    default:
      failMalformed();
  }
}

}  // namespace

std::string_view unescapeJson(std::string_view content, std::string& room) {
  std::size_t backslash = content.find('\\');
  if (backslash == std::string_view::npos) return content;
  room.clear();
  while (backslash != std::string_view::npos) {
    room.append(content, 0, backslash);
    content.remove_prefix(backslash + 1);
    // The token finder leaves no string that ends in a backslash.
    const char letter = content.front();
    content.remove_prefix(1);
    if (letter == 'u') {
      appendUtf8(room, takeCodePoint(content));
    } else {
      room += plainEscape(letter);
    }
    backslash = content.find('\\');
  }
  return room.append(content);
}

}  // namespace corvane
