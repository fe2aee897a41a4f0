#include "CorvaneCore/json/Codec.h"

#include <gtest/gtest.h>

#include <limits>

#include "CorvaneCore/json/AgentWire.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

template <class T>
std::string decodeError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)AgentWire::decode<T>(text); });
}

TEST(CodecTest, IntegersAreWholeNumbersOfAnySpelling) {
  EXPECT_EQ(AgentWire::decode<std::int64_t>("7.0"), 7);
  EXPECT_EQ(AgentWire::decode<std::int64_t>("9007199254740993.0"), 9007199254740993);
  EXPECT_EQ(AgentWire::decode<std::int64_t>("-9223372036854775808"),
            std::numeric_limits<std::int64_t>::min());
  for (const char* text : {"7.5", "9223372036854775808", "1e19", R"("7")", "true", "null"}) {
    EXPECT_EQ(decodeError<std::int64_t>(text), "expected an integer") << text;
  }
}

TEST(CodecTest, NumbersTakeWholeAndFractional) {
  EXPECT_EQ(AgentWire::decode<double>("7"), 7.0);
  EXPECT_EQ(AgentWire::decode<double>("-0.5"), -0.5);
  EXPECT_EQ(AgentWire::decode<double>("1e19"), 1e19);
  for (const char* text : {R"("7")", "false", "null", "[]"}) {
    EXPECT_EQ(decodeError<double>(text), "expected a number") << text;
  }
}

TEST(CodecTest, BooleansAreNoNumbers) {
  EXPECT_EQ(AgentWire::decode<bool>("true"), true);
  EXPECT_EQ(decodeError<bool>("1"), "expected a boolean");
  EXPECT_EQ(decodeError<bool>(R"("true")"), "expected a boolean");
}

TEST(CodecTest, DatesAreWholeSeconds) {
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Date>(R"("2025-03-01T10:30:00+01:00")")),
            R"("2025-03-01T09:30:00Z")");
  EXPECT_EQ(decodeError<Date>(R"("2025-03-01T09:30:00.123Z")"),
            "expected an ISO 8601 date-time in whole seconds");
  EXPECT_EQ(decodeError<Date>(R"("yesterday")"), "expected an ISO 8601 date-time in whole seconds");
  EXPECT_EQ(decodeError<Date>("1740821400"), "expected a date");
}

TEST(CodecTest, ListsAndMapsNameTheElementThatDoesNotFit) {
  using Lists = std::map<std::string, std::vector<bool>>;
  const char* text = R"({"":[],"a":[true,false],"b":[true]})";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<Lists>(text)), text);
  EXPECT_EQ(decodeError<Lists>(R"({"a":[true,0]})"), "a[1]: expected a boolean");
  EXPECT_EQ(decodeError<Lists>(R"({"a":true})"), "a: expected an array");
  EXPECT_EQ(decodeError<Lists>("[]"), "expected an object");
  EXPECT_EQ(decodeError<std::vector<std::vector<std::string>>>(R"([["a"],["b",7]])"),
            "[1][1]: expected a string");
}

TEST(CodecTest, FreeValuesPassThrough) {
  const char* text = R"([null,{"a":[1,0.5,"x",true]}])";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<AnyCodable>(text)), text);
  const char* members = R"({"a":[null,{"b":0.5}],"c":true})";
  EXPECT_EQ(AgentWire::encode(AgentWire::decode<JsonObject>(members)), members);
  EXPECT_EQ(decodeError<JsonObject>(text), "expected an object");
}

TEST(CodecTest, WhatIsNoJsonIsADecodeError) {
  EXPECT_THROW((void)AgentWire::decode<std::string>("text"), DecodeError);
  EXPECT_THROW((void)AgentWire::encode(std::numeric_limits<double>::infinity()), EncodeError);
}

}  // namespace
}  // namespace corvane::testing
