#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::standin {

/// What the made-up apps have to show.
struct Good {
  std::string_view name;
  /// In hundredths.
  std::int64_t price;
  std::string_view department;
};

struct Walk {
  std::string_view name;
  double kilometres;
};

[[nodiscard]] const std::vector<Good>& goods();
/// The goods with this word in their names, whatever its case; of a department, all of its goods.
[[nodiscard]] std::vector<Good> goodsNamed(std::string_view word);
/// The price of a product; some price for one that is not in stock.
[[nodiscard]] std::int64_t priceOf(std::string_view name);
/// An amount as it is shown, e.g. "14.00", negative ones with a minus.
[[nodiscard]] std::string shownAmount(std::int64_t hundredths);

[[nodiscard]] const std::vector<Walk>& walks();
/// A length as it is shown, e.g. "4.2 km".
[[nodiscard]] std::string shownDistance(double kilometres, bool inMiles);

}  // namespace corvane::standin
