#pragma once

#include <cstddef>
#include <vector>

namespace corvane::testing {

/// Measured figures of one kind, in any unit.
class Samples {
 public:
  void add(double value) { values.push_back(value); }
  void add(const Samples& others);

  [[nodiscard]] std::size_t count() const { return values.size(); }
  /// The value below which `share` of the values lie, 0 to 1. There is at least one value.
  [[nodiscard]] double quantile(double share) const;
  [[nodiscard]] double median() const { return quantile(0.5); }

 private:
  std::vector<double> values;
};

}  // namespace corvane::testing
