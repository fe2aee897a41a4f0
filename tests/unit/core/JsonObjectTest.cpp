#include "CorvaneCore/json/AnyCodable.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
namespace {

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

}  // namespace
}  // namespace corvane::testing
