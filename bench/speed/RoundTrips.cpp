#include "bench/speed/RoundTrips.h"

#include <chrono>

#include "bench/speed/Finding.h"

namespace corvane::testing {

void RoundTrips::addRound(Contender& contender, std::size_t count,
                          const std::function<std::string(std::size_t)>& request,
                          std::string_view expected) {
  using std::chrono::steady_clock;
  Samples microseconds;
  for (std::size_t id = 1; id <= count; ++id) {
    const std::string line = request(id);
    const auto start = steady_clock::now();
    contender.ask(line, expected);
    const std::chrono::duration<double, std::micro> taken = steady_clock::now() - start;
    microseconds.add(taken.count());
  }
  medians.add(microseconds.median());
  percentiles.add(microseconds.quantile(0.99));
}

std::string RoundTrips::text() const {
  return shortNumber(median()) + " / " + shortNumber(percentile99()) + " µs";
}

}  // namespace corvane::testing
