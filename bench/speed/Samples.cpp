#include "bench/speed/Samples.h"

#include <algorithm>

namespace corvane::testing {

void Samples::add(const Samples& others) {
  values.insert(values.end(), others.values.begin(), others.values.end());
}

double Samples::quantile(double share) const {
  std::vector<double> sorted = values;
  const auto at = sorted.begin() +
                  static_cast<std::ptrdiff_t>(share * static_cast<double>(sorted.size() - 1) + 0.5);
  std::nth_element(sorted.begin(), at, sorted.end());
  return *at;
}

}  // namespace corvane::testing
