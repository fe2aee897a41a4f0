#include "CorvaneCore/json/JsonScalars.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace corvane::testing {
namespace {

constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();

struct Reading {
  std::string literal;
  JsonNumber value;
};

TEST(JsonNumberTest, WholeNumbersWithin64BitsAreIntegersHoweverSpelled) {
  const std::vector<Reading> readings{
      {"0", 0},
      {"-0", 0},
      {"-0.0", 0},
      {"0e5", 0},
      {"0e999999999999999999999", 0},
      {"0.000e-999999999999999999999", 0},
      {"0e9223372036854775807", 0},
      {"7", 7},
      {"7.0", 7},
      {"1e3", 1000},
      {"1E+3", 1000},
      {"1e0", 1},
      {"1e-0", 1},
      {"1.50e1", 15},
      {"100e-2", 1},
      {"-12.500e2", -1250},
      {"0.001e3", 1},
      {"1e0000000000000000000000000000000000003", 1000},
      {"9007199254740993", 9007199254740993},
      {"9007199254740993.0", 9007199254740993},
      {"-9007199254740993.000", -9007199254740993},
      {"9007199254740993000e-3", 9007199254740993},
      {"1e18", 1000000000000000000},
      {"9223372036854775807", largest},
      {"9223372036854775807.00", largest},
      {"9.223372036854775807e18", largest},
      {"922337203685477580.7e1", largest},
      {"-9223372036854775808", smallest},
      {"-9223372036854775808.0", smallest},
      {"-9.223372036854775808e+18", smallest},
      {"0." + std::string(400, '0') + "1e401", 1},
      {"1" + std::string(400, '0') + "e-400", 1},
      {"1." + std::string(100000, '0'), 1},
  };
  for (const auto& [literal, value] : readings) {
    EXPECT_EQ(parseJsonNumber(literal), value) << literal;
  }
}

TEST(JsonNumberTest, OtherNumbersAreDoubles) {
  const std::vector<Reading> readings{
      {"0.5", 0.5},
      {"-0.5", -0.5},
      {"1.5", 1.5},
      {"15e-1", 1.5},
      {"1e-7", 1e-7},
      {"9223372036854775808", 9223372036854775808.0},
      {"-9223372036854775809", -9223372036854775808.0},
      {"9223372036854775807.5", 9223372036854775808.0},
      {"18446744073709551615", 18446744073709551615.0},
      {"-9223372036854775808.4", -9223372036854775808.0},
      {"-9223372036854775807.9", -9223372036854775808.0},
      {"1e19", 1e19},
      {"100000000000000000000000", 1e23},
      {"1" + std::string(308, '0'), 1e308},
      {"0.1000000000000000055511151231257827021181583404541015625", 0.1},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"-1.7976931348623157E+308", std::numeric_limits<double>::lowest()},
      {"2.2250738585072011e-308", 2.2250738585072011e-308},
      {"5e-324", std::numeric_limits<double>::denorm_min()},
  };
  for (const auto& [literal, value] : readings) {
    EXPECT_EQ(parseJsonNumber(literal), value) << literal;
  }
}

// Fails when the double is looked at instead of the digits: all of these round to whole numbers.
TEST(JsonNumberTest, WhatIsNotWholeAsWrittenIsNoInteger) {
  const std::vector<Reading> readings{
      {"1e-400", 0.0},
      {"2e-9223372036854775807", 0.0},
      {"2e-9223372036854775808", 0.0},
      {"2e-9223372036854775809", 0.0},
      {"-1e-400", 0.0},
      {"1.0000000000000000000001", 1.0},
      {"0.99999999999999999999999", 1.0},
      {"9007199254740993.5", 9007199254740994.0},
      {"-4503599627370497.7500001", -4503599627370498.0},
      {"1152921504606846976.3", 1152921504606846976.0},
  };
  for (const auto& [literal, value] : readings) {
    EXPECT_EQ(parseJsonNumber(literal), value) << literal;
    const auto read = std::get<double>(parseJsonNumber(literal).value());
    EXPECT_FALSE(std::signbit(read) && read == 0) << literal;
  }
}

TEST(JsonNumberTest, NumbersBeyondADoubleAreRefused) {
  for (const char* literal :
       {"1e309", "-1e309", "1.7976931348623159e308", "1e400", "1e9223372036854775807",
        "1e9223372036854775808", "1e999999999999999999999",
        "-1e99999999999999999999999999999999999", "0.1e999999999"}) {
    EXPECT_EQ(parseJsonNumber(literal), std::nullopt) << literal;
    EXPECT_FALSE(isJsonNumber(literal)) << literal;
  }
  const std::string tooLong = "1" + std::string(309, '0');
  EXPECT_EQ(parseJsonNumber(tooLong), std::nullopt);
  EXPECT_FALSE(isJsonNumber(tooLong));
}

TEST(JsonNumberTest, TellsNumbersWithoutReadingThem) {
  for (const std::string literal :
       {"0", "-0", "7", "-7.25", "1e308", "-1E+5", "0.0e999", "1e-999"}) {
    EXPECT_TRUE(isJsonNumber(literal)) << literal;
  }
  for (const std::size_t zeros : {17U, 18U, 19U, 298U, 299U, 300U, 308U}) {
    EXPECT_TRUE(isJsonNumber("1" + std::string(zeros, '0'))) << zeros;
    EXPECT_TRUE(isJsonNumber("0." + std::string(zeros, '0') + "1")) << zeros;
  }
}

TEST(JsonNumberTest, OtherTextsAreNoNumbers) {
  for (const char* literal :
       {"",      "-",     "+1",        "--1",          "01",  "-01",   "00",       "1.",
        "-1.",   ".5",    "-.5",       "1e",           "1e+", "1e-",   "1E",       "1.e1",
        "1e1.5", "1e1e1", "1.2.3",     "0x10",         "1_0", "1,000", "Infinity", "NaN",
        "inf",   "nan",   "-Infinity", " 1",           "1 ",  "1\n",   "1d",       "1f",
        "0b1",   "1e+-5", "1-1",       "\xEF\xBC\x91", "e5",  "1e 5",  "- 1",      "1e0x5"}) {
    EXPECT_EQ(parseJsonNumber(literal), std::nullopt) << literal;
    EXPECT_FALSE(isJsonNumber(literal)) << literal;
  }
  EXPECT_EQ(parseJsonNumber(std::string_view("1\0", 2)), std::nullopt);
}

TEST(ParseIntegerTest, ReadsSignAndDigits) {
  const std::vector<std::pair<const char*, std::int64_t>> readings{
      {"0", 0},
      {"5", 5},
      {"+5", 5},
      {"-5", -5},
      {"00012", 12},
      {"-0", 0},
      {"+0", 0},
      {"9223372036854775807", largest},
      {"-9223372036854775808", smallest},
  };
  for (const auto& [text, value] : readings) EXPECT_EQ(parseInteger(text), value) << text;
}

TEST(ParseIntegerTest, RefusesEverythingElse) {
  for (const char* text : {"", "+", "-", "+-5", "-+5", "--5", "++5", " 5", "5 ", "5.0", "1e3",
                           "0x5", "five", "9223372036854775808", "-9223372036854775809", "5a"}) {
    EXPECT_EQ(parseInteger(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace corvane::testing
