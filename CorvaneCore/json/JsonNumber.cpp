#include "CorvaneCore/json/JsonNumber.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

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

/// An exponent far beyond any number's digits stands in for all larger ones.
constexpr std::int64_t hugeExponent = std::int64_t{1} << 40;

std::int64_t exponentValue(std::string_view exponent) {
  if (exponent.empty()) return 0;
  if (exponent.front() == '+') exponent.remove_prefix(1);
  std::int64_t value = 0;
  const auto [end, error] =
      std::from_chars(exponent.data(), exponent.data() + exponent.size(), value);
  if (error != std::errc{} || std::abs(value) > hugeExponent) {
    return exponent.front() == '-' ? -hugeExponent : hugeExponent;
  }
  return value;
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
  const auto parts = splitLiteral(literal);
  if (!parts) return std::nullopt;
  if (const auto integer = exactInteger(*parts)) return *integer;
  // The process stays in the "C" locale, where strtod reads exactly this grammar.
  const double value = std::strtod(std::string(literal).c_str(), nullptr);
  if (!std::isfinite(value)) return std::nullopt;
  // What a double can only hold as a whole number would be read as an integer once it was written.
  if (std::trunc(value) == value && std::abs(value) < 0x1p63) {
    return static_cast<std::int64_t>(value);
  }
  return value;
}

}  // namespace corvane
