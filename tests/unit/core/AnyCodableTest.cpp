#include "CorvaneCore/json/AnyCodable.h"

#include <gtest/gtest.h>

#include <limits>

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

}  // namespace
}  // namespace corvane::testing
