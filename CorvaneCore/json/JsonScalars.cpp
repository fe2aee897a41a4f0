#include "CorvaneCore/json/JsonScalars.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/text/Unicode.h"

namespace corvane {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// The parts of a number literal that follow the JSON grammar.
struct Literal {
  bool negative = false;
  std::string_view whole;
  std::string_view fraction;
  std::string_view exponent;
};

std::string_view takeDigits(std::string_view& rest) {
  std::size_t count = 0;
  while (count < rest.size() && isDigit(rest[count])) ++count;
  const auto digits = rest.substr(0, count);
  rest.remove_prefix(count);
  return digits;
}

std::optional<Literal> splitLiteral(std::string_view rest) {
  Literal literal;
  if (rest.starts_with('-')) {
    literal.negative = true;
    rest.remove_prefix(1);
  }
  literal.whole = takeDigits(rest);
  if (literal.whole.empty() || (literal.whole.size() > 1 && literal.whole.front() == '0')) {
    return std::nullopt;
  }
  if (rest.starts_with('.')) {
    rest.remove_prefix(1);
    literal.fraction = takeDigits(rest);
    if (literal.fraction.empty()) return std::nullopt;
  }
  if (rest.starts_with('e') || rest.starts_with('E')) {
    rest.remove_prefix(1);
    literal.exponent = rest;
    if (rest.starts_with('+') || rest.starts_with('-')) rest.remove_prefix(1);
    if (takeDigits(rest).empty()) return std::nullopt;
  }
  return rest.empty() ? std::optional(literal) : std::nullopt;
}

/// The value of a literal of digits only, and so few that they need no look at their range; the
/// usual one.
std::optional<std::int64_t> shortInteger(std::string_view literal) {
  const bool negative = literal.starts_with('-');
  if (negative) literal.remove_prefix(1);
  const bool leadingZero = literal.size() > 1 && literal.front() == '0';
  if (literal.empty() || literal.size() > std::numeric_limits<std::int64_t>::digits10 ||
      leadingZero) {
    return std::nullopt;
  }
  std::int64_t value = 0;
  for (const char c : literal) {
    if (!isDigit(c)) return std::nullopt;
    value = 10 * value + (c - '0');
  }
  return negative ? -value : value;
}

/// An exponent far beyond any number's digits stands in for all that are further from zero.
constexpr std::int64_t hugeExponent = std::int64_t{1} << 40;

std::int64_t exponentValue(std::string_view exponent) {
  if (exponent.empty()) return 0;
  if (exponent.front() == '+') exponent.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] =
      std::from_chars(exponent.data(), exponent.data() + exponent.size(), value);
  if (error != std::errc{}) return exponent.front() == '-' ? -hugeExponent : hugeExponent;
  return std::clamp(value, -hugeExponent, hugeExponent);
}

/// Whether nothing shows at first sight that the literal's value is no whole number.
bool mayBeWhole(const Literal& literal) {
  return !literal.exponent.empty() ||
         literal.fraction.find_first_not_of('0') == std::string_view::npos;
}

/// The literal's value when it is whole and fits 64 bits; computed on its digits, so none is lost.
std::optional<std::int64_t> exactInteger(const Literal& literal) {
  std::string digits(literal.whole);
  digits += literal.fraction;
  const auto last = digits.find_last_not_of('0');
  if (last == std::string::npos) return 0;
  const auto trailingZeros = static_cast<std::int64_t>(digits.size() - last - 1);
  digits.resize(last + 1);
  digits.erase(0, digits.find_first_not_of('0'));
  const std::int64_t scale = exponentValue(literal.exponent) -
                             static_cast<std::int64_t>(literal.fraction.size()) + trailingZeros;
  constexpr std::int64_t mostDigits = std::numeric_limits<std::int64_t>::digits10 + 1;
  if (scale < 0 || static_cast<std::int64_t>(digits.size()) + scale > mostDigits)
    return std::nullopt;
  digits.append(static_cast<std::size_t>(scale), '0');
  if (literal.negative) digits.insert(0, 1, '-');
  return parseInteger(digits);
}

/// The double nearest to a literal's value; infinity when that lies beyond.
double nearestDouble(std::string_view literal) {
  double value = 0;
#ifdef __cpp_lib_to_chars
  const auto result = std::from_chars(literal.data(), literal.data() + literal.size(), value);
  if (result.ec == std::errc()) return value;
#endif
  // Knows, unlike from_chars, a value that is too large from one that is too small. The process
  // stays in the "C" locale, where it reads exactly the grammar of JSON.
  value = std::strtod(std::string(literal).c_str(), nullptr);
  return value;
}

}  // namespace

std::optional<std::int64_t> parseInteger(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<JsonNumber> parseJsonNumber(std::string_view literal) {
  if (const auto integer = shortInteger(literal)) return *integer;
  const auto parts = splitLiteral(literal);
  if (!parts) return std::nullopt;
  if (mayBeWhole(*parts)) {
    if (const auto integer = exactInteger(*parts)) return *integer;
  }
  const double value = nearestDouble(literal);
  if (!std::isfinite(value)) return std::nullopt;
  // A value too small for a double has no sign left that would be worth writing.
  return value == 0 ? 0.0 : value;
}

bool isJsonNumber(std::string_view literal) {
  if (shortInteger(literal)) return true;
  const auto parts = splitLiteral(literal);
  // Without an exponent it takes more than 300 digits to leave the range of a double.
  constexpr std::size_t surelyInRange = 300;
  if (!parts || (parts->exponent.empty() && literal.size() < surelyInRange))
    return parts.has_value();
  return parseJsonNumber(literal).has_value();
}

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

std::string_view unescapeJson(std::string_view content, std::string& buffer) {
  std::size_t backslash = content.find('\\');
  if (backslash == std::string_view::npos) return content;
  buffer.clear();
  while (backslash != std::string_view::npos) {
    buffer.append(content, 0, backslash);
    content.remove_prefix(backslash + 1);
    // The token finder leaves no string that ends in a backslash.
    const char letter = content.front();
    content.remove_prefix(1);
    if (letter == 'u') {
      appendUtf8(buffer, takeCodePoint(content));
    } else {
      buffer += plainEscape(letter);
    }
    backslash = content.find('\\');
  }
  return buffer.append(content);
}

}  // namespace corvane
