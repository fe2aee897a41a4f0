#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::testing {
namespace {

std::string repeated(std::string_view part, std::size_t count) {
  std::string text;
  text.reserve(part.size() * count);
  for (std::size_t i = 0; i < count; ++i) text += part;
  return text;
}

std::string nestedArrays(std::size_t levels) {
  return repeated("[", levels) + repeated("]", levels);
}

std::string nestedObjects(std::size_t levels) {
  return repeated("{\"a\":", levels) + "null" + repeated("}", levels);
}

/// Arrays and objects in turn, with something before and after every nested value.
std::string nestedMixture(std::size_t levels) {
  return repeated("[1,{\"a\":\"x\",\"b\":", levels) + "0.5" + repeated(",\"c\":[]},{}]", levels);
}

/// Reads, copies, compares, assigns, destroys and writes `text`, which must come out as it went in.
void expectFaithful(const std::string& text) {
  AnyCodable value = readJson(text);
  AnyCodable copy = value;
  EXPECT_TRUE(copy == value);
  value = nullptr;
  EXPECT_FALSE(copy == value);
  value = copy;
  EXPECT_TRUE(copy == value);
  copy = std::move(value);
  EXPECT_TRUE(toJson(copy) == text);
}

TEST(JsonNestingTest, TenThousandLevelsAreKeptFaithfully) {
  expectFaithful(nestedArrays(10'000));
  expectFaithful(nestedObjects(10'000));
  expectFaithful(nestedMixture(10'000));
}

TEST(JsonNestingTest, AHundredThousandLevelsAreKeptFaithfully) {
  expectFaithful(nestedArrays(100'000));
}

TEST(JsonNestingTest, AMillionArraysAreReadAndDestroyed) {
  EXPECT_NE(readJson(nestedArrays(1'000'000)).array(), nullptr);
}

TEST(JsonNestingTest, AMillionObjectsAreReadAndDestroyed) {
  EXPECT_NE(readJson(nestedObjects(1'000'000)).object(), nullptr);
}

TEST(JsonNestingTest, ADifferenceAtTheBottomIsSeen) {
  const AnyCodable left = readJson(repeated("[", 10'000) + "1" + repeated("]", 10'000));
  const AnyCodable right = readJson(repeated("[", 10'000) + "2" + repeated("]", 10'000));
  EXPECT_FALSE(left == right);
}

TEST(JsonNestingTest, ValuesBuiltInMemoryNestAsDeeply) {
  AnyCodable value;
  for (int level = 0; level < 100'000; ++level) {
    if (level % 2 == 0) {
      AnyCodable::Array array;
      array.push_back(std::move(value));
      value = std::move(array);
    } else {
      AnyCodable::Object object;
      object.set("a", std::move(value));
      value = std::move(object);
    }
  }
  const AnyCodable copy = value;
  EXPECT_TRUE(copy == value);
  value = nullptr;
  EXPECT_TRUE(value.isNull());
}

TEST(JsonNestingTest, AnAncestorIsReplacedByItsDeepDescendant) {
  AnyCodable value = readJson(repeated("[", 100'000) + "[7]" + repeated("]", 100'000));
  AnyCodable* inner = &value;
  for (int level = 0; level < 100'000; ++level) {
    inner = &std::get<AnyCodable::Array>(inner->value())[0];
  }
  value = std::move(*inner);
  EXPECT_EQ(toJson(value), "[7]");
}

TEST(JsonNestingTest, DeepTextsThatEndTooEarlyAreRefused) {
  EXPECT_THROW((void)readJson(repeated("[", 20'000)), DecodeError);
  EXPECT_THROW((void)readJson(repeated("{\"a\":", 20'000)), DecodeError);
  EXPECT_THROW((void)readJson(repeated("[", 20'000) + repeated("]", 19'999)), DecodeError);
  EXPECT_THROW((void)readJson(repeated("[", 20'000) + repeated("]", 20'001)), DecodeError);
  EXPECT_THROW((void)readJson(nestedArrays(20'000) + "x"), DecodeError);
  EXPECT_THROW((void)readJson(repeated("[[],", 20'000)), DecodeError);
}

TEST(JsonNestingTest, MembersAreFoundBesideDeepOnes) {
  const std::string deep = nestedMixture(20'000);
  const auto members = readMembers(R"({"a":)" + deep + R"(,"b":1,"c":)" + deep + "}", {"b"});
  EXPECT_EQ(toJson(members), R"({"b":1})");
}

}  // namespace
}  // namespace corvane::testing
