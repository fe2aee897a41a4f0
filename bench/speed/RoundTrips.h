#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "bench/speed/Contender.h"
#include "bench/speed/Samples.h"

namespace corvane::testing {

/// How long one request after the other took, in microseconds, over several rounds. What a round
/// says is the median of the rounds, so that one disturbed round does not count.
class RoundTrips {
 public:
  /// Sends `request`(1), `request`(2), ... and so on, each when the one before it was answered with
  /// a line that holds `expected`. Nothing is done beforehand to warm the contender up.
  void addRound(Contender& contender, std::size_t count,
                const std::function<std::string(std::size_t)>& request, std::string_view expected);

  [[nodiscard]] double median() const { return medians.median(); }
  [[nodiscard]] double percentile99() const { return percentiles.median(); }
  /// "4.31 / 9.02 µs"
  [[nodiscard]] std::string text() const;

 private:
  Samples medians;
  Samples percentiles;
};

}  // namespace corvane::testing
