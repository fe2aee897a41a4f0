#include "CorvaneCore/json/JsonWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonNumber.h"
#include "CorvaneCore/json/JsonReader.h"
#include "tests/support/PrintJson.h"

namespace corvane {
namespace {

using Array = AnyCodable::Array;
using Object = AnyCodable::Object;

TEST(JsonWriterTest, WritesCompactly) {
  EXPECT_EQ(toJson(Object{{"b", Array{1, Array{}, Object{}, nullptr, 0.5}},
                          {"a", Object{{"y", false}, {"x", true}}}}),
            R"({"a":{"x":true,"y":false},"b":[1,[],{},null,0.5]})");
  EXPECT_EQ(toJson(Array{Array{Array{}, Array{}}, Array{}}), "[[[],[]],[]]");
}

TEST(JsonWriterTest, EscapesEveryControlCharacterAndNothingElse) {
  constexpr std::array<const char*, 32> escapes{
      R"(\u0000)", R"(\u0001)", R"(\u0002)", R"(\u0003)", R"(\u0004)", R"(\u0005)", R"(\u0006)",
      R"(\u0007)", R"(\b)",     R"(\t)",     R"(\n)",     R"(\u000b)", R"(\f)",     R"(\r)",
      R"(\u000e)", R"(\u000f)", R"(\u0010)", R"(\u0011)", R"(\u0012)", R"(\u0013)", R"(\u0014)",
      R"(\u0015)", R"(\u0016)", R"(\u0017)", R"(\u0018)", R"(\u0019)", R"(\u001a)", R"(\u001b)",
      R"(\u001c)", R"(\u001d)", R"(\u001e)", R"(\u001f)"};
  for (std::size_t code = 0; code < 0x80; ++code) {
    const std::string text{'<', static_cast<char>(code), '>'};
    std::string expected = text;
    if (code < escapes.size()) expected = "<" + std::string(escapes[code]) + ">";
    if (code == '"') expected = R"(<\">)";
    if (code == '\\') expected = R"(<\\>)";
    EXPECT_EQ(toJson(AnyCodable(text)), "\"" + expected + "\"");
    EXPECT_EQ(toJson(Object{{text, 1}}), "{\"" + expected + "\":1}");
    EXPECT_EQ(readJson(toJson(AnyCodable(text))), AnyCodable(text));
  }
}

TEST(JsonWriterTest, WritesOtherCharactersAsTheyAre) {
  const std::string text = "\x7F\xC2\x85\xC3\xA9\xE2\x80\xA8\xEE\x80\x80\xF0\x9F\x98\x80";
  EXPECT_EQ(toJson(AnyCodable(text)), "\"" + text + "\"");
}

TEST(JsonWriterTest, LeavesSlashesAloneUnlessAsked) {
  const AnyCodable value(Object{{"a/b", "/Users/x"}, {"c", Array{"//"}}});
  EXPECT_EQ(toJson(value), R"({"a/b":"/Users/x","c":["//"]})");
  EXPECT_EQ(toJson(value, SlashStyle::escaped), R"({"a\/b":"\/Users\/x","c":["\/\/"]})");
  EXPECT_EQ(readJson(toJson(value, SlashStyle::escaped)), value);
}

TEST(JsonWriterTest, TakeLeavesAnEmptyWriter) {
  JsonWriter writer;
  writer.integer(1);
  EXPECT_EQ(writer.take(), "1");
  EXPECT_EQ(writer.take(), "");
  writer.beginArray();
  writer.null();
  writer.string("x");
  writer.endArray();
  EXPECT_EQ(writer.take(), R"([null,"x"])");
}

TEST(JsonWriterTest, WritesDoublesInTheirShortestDigits) {
  const std::vector<std::pair<double, const char*>> numbers{
      {0.0, "0"},
      {-0.0, "-0"},
      {1.0, "1"},
      {-2.0, "-2"},
      {0.1, "0.1"},
      {-0.5, "-0.5"},
      {1.5, "1.5"},
      {100.0, "100"},
      {1.0 / 3.0, "0.3333333333333333"},
      {0.1 + 0.2, "0.30000000000000004"},
      {123456.789, "123456.789"},
      {1e-5, "0.00001"},
      {9007199254740992.0, "9007199254740992"},
      {1e15, "1000000000000000"},
      {9999999999999998.0, "9999999999999998"},
      {1e16, "1e+16"},
      {1e23, "1e+23"},
      {1.5e300, "1.5e+300"},
      {9.999e-6, "9.999e-06"},
      {1e-7, "1e-07"},
      {5e-324, "5e-324"},
      {2.2250738585072014e-308, "2.2250738585072014e-308"},
      {1.7976931348623157e308, "1.7976931348623157e+308"},
  };
  for (const auto& [number, text] : numbers) EXPECT_EQ(toJson(AnyCodable(number)), text);
}

TEST(JsonWriterTest, RefusesNumbersThatAreNotFinite) {
  for (const double number :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_THROW((void)toJson(AnyCodable(number)), EncodeError);
    EXPECT_THROW((void)toJson(Object{{"a", Array{number}}}), EncodeError);
  }
}

double asDouble(const JsonNumber& number) {
  return std::visit([](auto value) { return static_cast<double>(value); }, number);
}

std::size_t significantDigits(std::string_view text) {
  std::string digits;
  for (const char c : text.substr(0, text.find('e'))) {
    if (c >= '0' && c <= '9') digits += c;
  }
  digits.erase(0, digits.find_first_not_of('0'));
  const auto last = digits.find_last_not_of('0');
  return last == std::string::npos ? 1 : last + 1;
}

/// Whether some number of `digits` significant digits reads back as `number`.
bool readsBackFrom(double number, std::size_t digits) {
  std::array<char, 64> text;
  std::snprintf(text.data(), text.size(), "%.*e", static_cast<int>(digits) - 1, number);
  return std::strtod(text.data(), nullptr) == number;
}

TEST(JsonWriterTest, AnyDoubleReadsBackFromTheFewestDigits) {
  std::mt19937_64 random(20260131);
  for (int round = 0; round < 20'000; ++round) {
    const auto number = std::bit_cast<double>(random());
    if (!std::isfinite(number)) continue;
    const std::string text = toJson(AnyCodable(number));
    const auto read = parseJsonNumber(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(asDouble(*read), number) << text;
    const std::size_t digits = significantDigits(text);
    EXPECT_LE(digits, 17U) << text;
    EXPECT_FALSE(digits > 1 && readsBackFrom(number, digits - 1)) << text;
  }
}

TEST(JsonWriterTest, DoublesOfEveryMagnitudeKeepTheirKind) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> mantissa(-1, 1);
  for (int exponent = -330; exponent <= 307; ++exponent) {
    const double number = mantissa(random) * std::pow(10.0, exponent);
    const AnyCodable first = readJson(toJson(AnyCodable(number)));
    EXPECT_EQ(readJson(toJson(first)), first) << number;
    const bool whole = std::trunc(number) == number && std::abs(number) < 0x1p63;
    EXPECT_EQ(first.integer() != nullptr, whole) << number;
  }
}

TEST(JsonWriterTest, AnyIntegerReadsBackAsItself) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 5'000; ++round) {
    const auto integer = static_cast<std::int64_t>(random() >> (round % 64));
    for (const std::int64_t value : {integer, -integer}) {
      const std::string text = toJson(AnyCodable(value));
      EXPECT_EQ(text, std::to_string(value));
      EXPECT_EQ(readJson(text), AnyCodable(value));
    }
  }
}

}  // namespace
}  // namespace corvane
