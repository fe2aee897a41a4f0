#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
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

TEST(JsonWriterTest, EscapesWhereverItStandsInALongText) {
  const std::vector<std::pair<char, std::string>> escapes{{'"', R"(\")"},
                                                          {'\\', R"(\\)"},
                                                          {'\n', R"(\n)"},
                                                          {'\x01', R"(\u0001)"},
                                                          {'\x1F', R"(\u001f)"}};
  for (const auto& [byte, escape] : escapes) {
    for (std::size_t length = 1; length <= 26; ++length) {
      for (std::size_t at = 0; at < length; ++at) {
        // The neighbours are the bytes next to those that need an escape.
        std::string before = std::string("\xC2\x80 !#[]~\x7F/.0'&()*+,-:;<=>?").substr(0, at);
        if (before == "\xC2") before = "x";
        const std::string after(length - at - 1, ' ');
        EXPECT_EQ(toJson(AnyCodable(before + byte + after)), "\"" + before + escape + after + "\"");
      }
    }
  }
}

// Fails when a text that is shorter than a word loses or changes a byte at any place.
TEST(JsonWriterTest, WritesShortTextsOfEveryLength) {
  constexpr std::string_view letters = "abcdefgh";
  for (std::size_t size = 1; size <= letters.size(); ++size) {
    const std::string text(letters.substr(0, size));
    EXPECT_EQ(toJson(AnyCodable(text)), '"' + text + '"');
    for (std::size_t place = 0; place < size; ++place) {
      const std::string before = text.substr(0, place);
      const std::string after = text.substr(place + 1);
      EXPECT_EQ(toJson(AnyCodable(before + '\n' + after)), '"' + before + "\\n" + after + '"');
      EXPECT_EQ(toJson(AnyCodable(before + ' ' + after)), '"' + before + ' ' + after + '"');
    }
  }
}

TEST(JsonWriterTest, MakesRoomForTextsThatGrowManyTimes) {
  for (const std::size_t length : {1U, 7U, 8U, 9U, 63U, 64U, 65U, 1000U}) {
    std::string expected;
    for (std::size_t i = 0; i < length; ++i) expected += R"(\u0002)";
    EXPECT_EQ(toJson(AnyCodable(std::string(length, '\x02'))), "\"" + expected + "\"");
    const std::string plain(length, 'x');
    EXPECT_EQ(toJson(AnyCodable(plain + std::string(length, '\x02'))),
              "\"" + plain + expected + "\"");
  }
}

TEST(JsonWriterTest, EscapesSlashesInLongTextsWhenAsked) {
  const AnyCodable path("/Users/someone/a/long/way/");
  EXPECT_EQ(toJson(path), R"("/Users/someone/a/long/way/")");
  EXPECT_EQ(toJson(path, SlashStyle::escaped), R"("\/Users\/someone\/a\/long\/way\/")");
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

TEST(JsonWriterTest, HandsOverALongTextPieceByPiece) {
  // Nothing divides the length: pieces end wherever they happen to.
  std::string text;
  std::string expected;
  for (int i = 0; i < 99'991; ++i) {
    text += i % 7 == 0 ? "\"\x01" : "\xC3\xBC";
    expected += i % 7 == 0 ? R"(\"\u0001)" : "\xC3\xBC";
  }
  std::string written;
  std::size_t pieces = 0;
  std::size_t largest = 0;
  JsonWriter writer([&](std::string_view piece) {
    written += piece;
    ++pieces;
    largest = std::max(largest, piece.size());
  });
  writer.beginArray();
  writer.string(text);
  writer.integer(-7);
  writer.string(text);
  writer.endArray();
  const std::string rest = writer.take();
  EXPECT_TRUE(written + rest == "[\"" + expected + "\",-7,\"" + expected + "\"]");
  EXPECT_GT(pieces, 2U);
  EXPECT_LE(largest, 128U << 10);
  EXPECT_LE(rest.size(), 128U << 10);
}

TEST(JsonWriterTest, KeepsAShortTextToBeTaken) {
  JsonWriter writer([](std::string_view piece) { ADD_FAILURE() << piece; });
  writer.string("short");
  EXPECT_EQ(writer.take(), R"("short")");
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
      {1e16, "10000000000000000"},
      {90071992540741008.0, "90071992540741008"},
      {-9223372036854774784.0, "-9223372036854774784"},
      {9223372036854775808.0, "9.223372036854776e+18"},
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
    if (std::holds_alternative<std::int64_t>(*read)) continue;
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

TEST(IndentedJsonTest, EveryMemberAndElementHasItsLine) {
  EXPECT_EQ(indentedJson(R"({"a":[1,{"b":null}],"c":"x"})"),
            "{\n"
            "  \"a\": [\n"
            "    1,\n"
            "    {\n"
            "      \"b\": null\n"
            "    }\n"
            "  ],\n"
            "  \"c\": \"x\"\n"
            "}");
}

TEST(IndentedJsonTest, EmptyContainersStayOnTheirLine) {
  EXPECT_EQ(indentedJson("{}"), "{}");
  EXPECT_EQ(indentedJson("[]"), "[]");
  EXPECT_EQ(indentedJson(R"({"a":{},"b":[[]]})"), "{\n  \"a\": {},\n  \"b\": [\n    []\n  ]\n}");
}

TEST(IndentedJsonTest, ScalarsStandAsTheyAre) {
  for (const char* scalar : {"null", "true", "-1.5e-7", R"("text")", R"("")", ""}) {
    EXPECT_EQ(indentedJson(scalar), scalar);
  }
}

TEST(IndentedJsonTest, StringsAreLeftAlone) {
  for (const char* text :
       {R"("{[,:]}")", R"("say \"{\" and \\")", R"("\\")", R"("\\\"")", R"("日本 {}")"}) {
    EXPECT_EQ(indentedJson(text), text);
    EXPECT_EQ(indentedJson(std::string("[") + text + "]"), std::string("[\n  ") + text + "\n]");
  }
}

TEST(IndentedJsonTest, TheValueIsTheSame) {
  const std::string compact =
      R"({"a":"\"{}[],:\\","b":[[],{},[1,-2,0.5],{"c":{"d":[true,false,null]}}]})";
  EXPECT_EQ(toJson(readJson(indentedJson(compact))), compact);
}

TEST(IndentedJsonTest, IndentationHasAnEnd) {
  const std::string deep = std::string(20'000, '[') + std::string(20'000, ']');
  const std::string indented = indentedJson(deep);
  EXPECT_LT(indented.size(), 4'000'000U);
  EXPECT_EQ(toJson(readJson(indented)), deep);
}

}  // namespace
}  // namespace corvane::testing
