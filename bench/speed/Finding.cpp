#include "bench/speed/Finding.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace corvane::testing {

std::string shortNumber(double value) {
  const double magnitude = std::abs(value);
  const int decimals = magnitude >= 100 ? 0 : magnitude >= 10 ? 1 : magnitude >= 1 ? 2 : 3;
  std::array<char, 64> digits;
  std::snprintf(digits.data(), digits.size(), "%.*f", decimals, value);
  return digits.data();
}

Finding timesBetter(std::string what, double required, double measured) {
  return {std::move(what),
          "≥ " + shortNumber(required) + " ×",
          shortNumber(measured) + " ×",
          measured >= required,
          "",
          ""};
}

Finding timesAtMost(std::string what, double allowed, double measured) {
  return {std::move(what),
          "≤ " + shortNumber(allowed) + " ×",
          shortNumber(measured) + " ×",
          measured <= allowed,
          "",
          ""};
}

}  // namespace corvane::testing
