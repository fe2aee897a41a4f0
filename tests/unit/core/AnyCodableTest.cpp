#include <gtest/gtest.h>

#include <limits>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
namespace {

using Array = AnyCodable::Array;
using Object = AnyCodable::Object;

TEST(AnyCodableTest, IsNullUnlessGivenAValue) {
  EXPECT_TRUE(AnyCodable().isNull());
  EXPECT_TRUE(AnyCodable(nullptr).isNull());
  EXPECT_FALSE(AnyCodable(false).isNull());
  EXPECT_FALSE(AnyCodable("").isNull());
  EXPECT_FALSE(AnyCodable(Array()).isNull());
}

TEST(AnyCodableTest, EachKindIsSeenByItsOwnAccessorOnly) {
  const std::vector<AnyCodable> oneOfEach{nullptr, true, 7, 0.5, "text", Array(), Object()};
  for (std::size_t kind = 0; kind < oneOfEach.size(); ++kind) {
    const AnyCodable& value = oneOfEach[kind];
    EXPECT_EQ(value.value().index(), kind);
    EXPECT_EQ(value.isNull(), kind == 0);
    EXPECT_EQ(value.boolean() != nullptr, kind == 1);
    EXPECT_EQ(value.integer() != nullptr, kind == 2);
    EXPECT_EQ(value.number() != nullptr, kind == 3);
    EXPECT_EQ(value.string() != nullptr, kind == 4);
    EXPECT_EQ(value.array() != nullptr, kind == 5);
    EXPECT_EQ(value.object() != nullptr, kind == 6);
  }
}

TEST(AnyCodableTest, NativeValuesKeepTheirKind) {
  EXPECT_EQ(toJson(AnyCodable(true)), "true");
  EXPECT_EQ(toJson(AnyCodable(1)), "1");
  EXPECT_EQ(toJson(AnyCodable(static_cast<unsigned char>(200))), "200");
  EXPECT_EQ(toJson(AnyCodable(std::numeric_limits<std::uint32_t>::max())), "4294967295");
  EXPECT_EQ(toJson(AnyCodable(std::numeric_limits<std::int64_t>::min())), "-9223372036854775808");
  EXPECT_EQ(toJson(AnyCodable(std::numeric_limits<std::int64_t>::max())), "9223372036854775807");
  EXPECT_EQ(toJson(AnyCodable(0.5)), "0.5");
  EXPECT_EQ(toJson(AnyCodable(0.5F)), "0.5");
  EXPECT_EQ(toJson(AnyCodable(std::string("a\0b", 3))), R"("a\u0000b")");
  EXPECT_EQ(toJson(AnyCodable(std::string_view("text"))), R"("text")");
}

TEST(AnyCodableTest, NativeMapsAndListsNest) {
  EXPECT_EQ(toJson(AnyCodable(std::vector<std::string>{"a", "b"})), R"(["a","b"])");
  EXPECT_EQ(toJson(AnyCodable(std::vector<bool>{true, false})), "[true,false]");
  const std::map<std::string, std::vector<double>> lists{{"b", {0.5}}, {"a", {}}};
  EXPECT_EQ(toJson(AnyCodable(lists)), R"({"a":[],"b":[0.5]})");
  const AnyCodable schema(Object{
      {"type", "object"},
      {"additionalProperties", false},
      {"properties", Object{{"seconds", Object{{"minimum", 0.5}, {"maxItems", 1}}}}},
      {"required", Array{"seconds", nullptr, true}},
  });
  EXPECT_EQ(
      toJson(schema),
      R"({"additionalProperties":false,"properties":{"seconds":{"maxItems":1,"minimum":0.5}},)"
      R"("required":["seconds",null,true],"type":"object"})");
}

TEST(AnyCodableTest, ReadValuesComeOutAsTheyWentIn) {
  EXPECT_EQ(toJson(readJson(R"([1, 1.5, true, "x", null, {"a":{}}])")),
            R"([1,1.5,true,"x",null,{"a":{}}])");
  EXPECT_EQ(toJson(readJson("[true,1,1.0,0.5,false,0]")), "[true,1,1,0.5,false,0]");
  EXPECT_EQ(readJson("1.0"), AnyCodable(1));
  EXPECT_EQ(readJson("1e3"), AnyCodable(1000));
}

TEST(AnyCodableTest, FindsMembersOfObjectsOnly) {
  const AnyCodable value(Object{{"a", 1}, {"", "empty key"}});
  ASSERT_NE(value.find("a"), nullptr);
  EXPECT_EQ(*value.find("a"), AnyCodable(1));
  EXPECT_EQ(*value.find(""), AnyCodable("empty key"));
  EXPECT_EQ(value.find("A"), nullptr);
  EXPECT_EQ(AnyCodable(Array{"a"}).find("a"), nullptr);
  EXPECT_EQ(AnyCodable("a").find("a"), nullptr);
  EXPECT_EQ(AnyCodable().find("a"), nullptr);
}

TEST(AnyCodableTest, ValuesAreEqualInKindAndContents) {
  EXPECT_EQ(AnyCodable(), AnyCodable(nullptr));
  EXPECT_EQ(AnyCodable(Object{{"a", 1}, {"b", 2}}), AnyCodable(Object{{"b", 2}, {"a", 1}}));

  const std::vector<AnyCodable> allDifferent{
      nullptr,
      true,
      false,
      1,
      0,
      1.0,
      0.0,
      0.5,
      "",
      "1",
      "true",
      "null",
      Array{},
      Array{nullptr},
      Array{1, 2},
      Array{2, 1},
      Array{1, 2, 3},
      // Named in full: compilers differ on whether a list of one list is a copy of it.
      Array{AnyCodable(Array{})},
      Array{Object{}},
      Object{},
      Object{{"a", nullptr}},
      Object{{"a", 1}},
      Object{{"b", 1}},
      Object{{"a", 1}, {"b", 1}},
      Object{{"a", Object{}}},
      Object{{"a", Array{}}},
  };
  for (std::size_t i = 0; i < allDifferent.size(); ++i) {
    for (std::size_t j = 0; j < allDifferent.size(); ++j) {
      EXPECT_EQ(allDifferent[i] == allDifferent[j], i == j)
          << toJson(allDifferent[i]) << " and " << toJson(allDifferent[j]);
    }
  }
}

TEST(AnyCodableTest, CopiesAreIndependent) {
  const std::string text = R"({"a":[1,{"b":[null,"x",[]]}],"c":{},"d":0.5})";
  AnyCodable original = readJson(text);
  const AnyCodable copy = original;
  EXPECT_EQ(copy, original);
  original.value().emplace<Object>().set("a", 2);
  EXPECT_EQ(toJson(copy), text);
  EXPECT_EQ(toJson(original), R"({"a":2})");
}

TEST(AnyCodableTest, AssignsAChildToItsOwnParent) {
  const AnyCodable nested = readJson(R"([[1,[2,{"a":[3]}]],4])");
  AnyCodable copied = nested;
  copied = (*copied.array())[0];
  EXPECT_EQ(toJson(copied), R"([1,[2,{"a":[3]}]])");

  AnyCodable moved = nested;
  moved = std::move(std::get<Array>(moved.value())[0]);
  EXPECT_EQ(toJson(moved), R"([1,[2,{"a":[3]}]])");
}

TEST(AnyCodableTest, AssignsToItself) {
  AnyCodable value = readJson(R"({"a":[1,2]})");
  const AnyCodable& alias = value;
  value = alias;
  EXPECT_EQ(toJson(value), R"({"a":[1,2]})");
  value = std::move(const_cast<AnyCodable&>(alias));
  EXPECT_EQ(toJson(value), R"({"a":[1,2]})");
}

TEST(AnyCodableTest, AssignsAcrossKinds) {
  const std::vector<AnyCodable> oneOfEach{
      nullptr, true, 7, 0.5, "text", Array{AnyCodable(Array{1})}, Object{{"a", Object{{"b", 1}}}}};
  for (const AnyCodable& from : oneOfEach) {
    for (const AnyCodable& to : oneOfEach) {
      AnyCodable copied = to;
      copied = from;
      EXPECT_EQ(copied, from);
      AnyCodable moved = to;
      moved = AnyCodable(from);
      EXPECT_EQ(moved, from);
    }
  }
}

TEST(JsonObjectTest, KeepsItsKeysSorted) {
  EXPECT_EQ(toJson(JsonObject{{"b", 1}, {"B", 2}, {"a", 3}, {"", 4}, {"aa", 5}, {"_", 6}}),
            R"({"":4,"B":2,"_":6,"a":3,"aa":5,"b":1})");
}

TEST(JsonObjectTest, SortsByCodePoint) {
  // U+1F600 lies beyond the private use character U+E000 and beyond U+FFFD, although its UTF-16
  // form begins with a smaller unit.
  const std::string beyond = "\xF0\x9F\x98\x80";
  const std::string privateUse = "\xEE\x80\x80";
  const std::string replacement = "\xEF\xBF\xBD";
  const std::string accented = "\xC3\xA9";
  EXPECT_EQ(
      toJson(JsonObject{{beyond, 1}, {replacement, 2}, {privateUse, 3}, {accented, 4}, {"z", 5}}),
      "{\"z\":5,\"" + accented + "\":4,\"" + privateUse + "\":3,\"" + replacement + "\":2,\"" +
          beyond + "\":1}");
  EXPECT_EQ(
      toJson(readJson(R"({"\ud83d\ude00":1,"\ue000":2,"\uffff":3,"\u0000":4,"\u007f":5})")),
      "{\"\\u0000\":4,\"\x7F\":5,\"\xEE\x80\x80\":2,\"\xEF\xBF\xBF\":3,\"" + beyond + "\":1}");
}

TEST(JsonObjectTest, LastOfSeveralMembersWithOneKeyWins) {
  EXPECT_EQ(toJson(JsonObject{{"a", 1}, {"a", 2}}), R"({"a":2})");
  EXPECT_EQ(toJson(JsonObject{{"b", 1}, {"a", 1}, {"b", 2}, {"c", 1}, {"a", 2}, {"b", 3}}),
            R"({"a":2,"b":3,"c":1})");
  EXPECT_EQ(toJson(JsonObject{{"a", AnyCodable::Array{1}}, {"b", 1}, {"a", nullptr}}),
            R"({"a":null,"b":1})");
}

TEST(JsonObjectTest, SetInsertsAndReplaces) {
  JsonObject object;
  EXPECT_TRUE(object.empty());
  object.set("m", 1);
  object.set("a", 2);
  object.set("z", 3);
  object.set("m", "replaced");
  EXPECT_EQ(object.size(), 3U);
  EXPECT_FALSE(object.empty());
  EXPECT_EQ(toJson(object), R"({"a":2,"m":"replaced","z":3})");
}

TEST(JsonObjectTest, FindsExactKeysOnly) {
  JsonObject object{{"a", 1}, {"c", 3}, {std::string("a\0", 2), 2}};
  EXPECT_EQ(object.find("b"), nullptr);
  EXPECT_EQ(object.find(""), nullptr);
  EXPECT_EQ(object.find("cc"), nullptr);
  EXPECT_EQ(*object.find("a"), AnyCodable(1));
  EXPECT_EQ(*object.find(std::string_view("a\0", 2)), AnyCodable(2));
  *object.find("c") = "changed in place";
  EXPECT_EQ(*object.find("c"), AnyCodable("changed in place"));
}

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
