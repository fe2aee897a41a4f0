#pragma once

#include <string>
#include <utility>

namespace corvane::testing {

/// One line of the table: what was required and what was measured.
struct Finding {
  std::string what;
  std::string required;
  std::string measured;
  bool reached = false;
  /// The figures behind it.
  std::string ours;
  std::string others;

  [[nodiscard]] Finding with(std::string oursText, std::string othersText) && {
    ours = std::move(oursText);
    others = std::move(othersText);
    return std::move(*this);
  }
};

/// `value` with so many digits that three or so count, e.g. "0.0123", "4.56", "789".
[[nodiscard]] std::string shortNumber(double value);

/// A finding about how many times faster (or smaller) we are; `required` as a least factor.
[[nodiscard]] Finding timesBetter(std::string what, double required, double measured);
/// A finding about how many times as much we take; `allowed` as a largest factor.
[[nodiscard]] Finding timesAtMost(std::string what, double allowed, double measured);

}  // namespace corvane::testing
