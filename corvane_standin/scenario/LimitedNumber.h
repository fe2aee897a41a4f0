#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "CorvaneCore/json/Codec.h"

namespace corvane::standin {

/// A number that a file may hold only within limits. `Limits` names its type, `least` and `most`,
/// and says in `expected` what an error tells.
template <class Limits>
struct LimitedNumber {
  using Number = typename Limits::Number;

  constexpr LimitedNumber() = default;
  /// Of any number: only what is read is held to the limits.
  constexpr LimitedNumber(Number number) : number(number) {}
  constexpr operator Number() const { return number; }

  /// Written so that NaN is not.
  [[nodiscard]] constexpr bool isWithinLimits() const {
    return number >= Limits::least && number <= Limits::most;
  }

 private:
  Number number{};
};

struct SecondsLimits {
  using Number = double;
  static constexpr Number least = 0;
  static constexpr Number most = 1'000'000;
  static constexpr std::string_view expected = "expected seconds from 0 to 1000000";
};
using Seconds = LimitedNumber<SecondsLimits>;

/// A step of a test, counted from 0.
struct StepLimits {
  using Number = std::int64_t;
  static constexpr Number least = 0;
  static constexpr Number most = std::numeric_limits<Number>::max();
  static constexpr std::string_view expected = "expected a step number from 0";
};
using StepNumber = LimitedNumber<StepLimits>;

struct TimesLimits {
  using Number = std::int64_t;
  static constexpr Number least = 1;
  static constexpr Number most = std::numeric_limits<Number>::max();
  static constexpr std::string_view expected = "expected a number of times from 1";
};
using Times = LimitedNumber<TimesLimits>;

}  // namespace corvane::standin

template <class Limits>
struct corvane::Codec<corvane::standin::LimitedNumber<Limits>> {
  using Value = standin::LimitedNumber<Limits>;

  static Value decode(AnyCodable&& value, const DecodePath& at) {
    const Value number = Codec<typename Limits::Number>::decode(std::move(value), at);
    if (!number.isWithinLimits()) at.fail(Limits::expected);
    return number;
  }
  static void encode(Value value, JsonSink& sink) {
    Codec<typename Limits::Number>::encode(value, sink);
  }
};
