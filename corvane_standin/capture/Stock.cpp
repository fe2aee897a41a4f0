#include "corvane_standin/capture/Stock.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::standin {

const std::vector<Good>& goods() {
  static const std::vector<Good> all{
      {"Enamel mug", 1400, "Kitchen"},     {"Linen apron", 3600, "Kitchen"},
      {"Stoneware bowl", 1850, "Kitchen"}, {"Beeswax candle", 1200, "Living room"},
      {"Willow basket", 4200, "Garden"},   {"Desk lamp", 5900, "Living room"},
      {"Linen towel", 950, "Bath"},        {"Herb planter", 2200, "Garden"},
      {"Glass bottle", 1400, "Kitchen"},   {"Linen cushion", 2400, "Living room"},
      {"Linen napkins", 1500, "Kitchen"},  {"Linen tablecloth", 3800, "Kitchen"},
  };
  return all;
}

std::vector<Good> goodsNamed(std::string_view word) {
  std::vector<Good> found;
  const std::string wanted = asciiLowercase(word);
  std::copy_if(goods().begin(), goods().end(), std::back_inserter(found), [&](const Good& good) {
    return asciiLowercase(good.name).find(wanted) != std::string::npos ||
           asciiLowercase(good.department) == wanted;
  });
  return found;
}

std::int64_t priceOf(std::string_view name) {
  constexpr std::int64_t otherPrice = 1900;
  const auto found = std::find_if(goods().begin(), goods().end(),
                                  [name](const Good& good) { return good.name == name; });
  return found == goods().end() ? otherPrice : found->price;
}

std::string shownAmount(std::int64_t hundredths) {
  const std::int64_t size = hundredths < 0 ? -hundredths : hundredths;
  const std::string cents = std::to_string(size % 100);
  return std::string(hundredths < 0 ? "−" : "") + std::to_string(size / 100) + "." +
         (cents.size() < 2 ? "0" : "") + cents;
}

const std::vector<Walk>& walks() {
  static const std::vector<Walk> all{{"Lakeside loop", 7.8}, {"Ridge path", 12.4},
                                     {"Old town", 3.1},      {"Forest round", 6.0},
                                     {"Harbour wall", 4.2},  {"Mill stream", 5.5}};
  return all;
}

std::string shownDistance(double kilometres, bool inMiles) {
  constexpr double milesInKilometre = 0.621371;
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f %s",
                inMiles ? kilometres * milesInKilometre : kilometres, inMiles ? "mi" : "km");
  return text.data();
}

}  // namespace corvane::standin
