#include "CorvaneCore/json/JsonReader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/ErrorText.h"

namespace corvane::testing {
namespace {

/// Where each member of the object that `text` holds begins and ends when it is skipped.
std::string placesIn(std::string_view text) {
  std::string places;
  JsonReader().read(text, [&](JsonCursor& cursor) {
    cursor.members([&](std::string_view key) {
      places.append(key).append(" ").append(std::to_string(cursor.position()));
      cursor.skip();
      places.append("-").append(std::to_string(cursor.position())).append(" ");
    });
    places.append("end ").append(std::to_string(cursor.position()));
  });
  return places;
}

/// What reading fails with when `text` is skipped whole.
std::string skipError(std::string_view text) {
  return errorText<DecodeError>(
      [&] { JsonReader().read(text, [](JsonCursor& cursor) { cursor.skip(); }); });
}

TEST(JsonCursorTest, ValuesAreWhereTheyBeginAndEndWhereTheTextGoesOn) {
  EXPECT_EQ(placesIn("{}"), "end 2");
  EXPECT_EQ(placesIn(R"({"k" : "v"})"), "k 7-10 end 11");
  EXPECT_EQ(placesIn("{\"a\":{\"b\":[1]\n}\t}\n"), "a 5-16 end 18");
  EXPECT_EQ(placesIn(R"({"a":1 ,"b":[[],{}],"c":null})"), "a 5-7 b 12-19 c 24-28 end 29");
}

TEST(JsonCursorTest, TakesMembersAndElementsInTheirOwnOrder) {
  std::vector<std::string> taken;
  JsonReader().read(R"({"b":[1,{"x":[true]},"two"],"a":null,"b":[[]],"\u0063":-0.5})",
                    [&](JsonCursor& cursor) {
                      ASSERT_TRUE(cursor.atObject());
                      cursor.members([&](std::string_view key) {
                        taken.emplace_back(key);
                        if (!cursor.atArray()) return taken.push_back(toJson(cursor.read()));
                        cursor.elements([&] { taken.push_back(toJson(cursor.read())); });
                      });
                    });
  EXPECT_EQ(taken, (std::vector<std::string>{"b", "1", R"({"x":[true]})", R"("two")", "a", "null",
                                             "b", "[]", "c", "-0.5"}));
}

TEST(JsonCursorTest, EmptyContainersHaveNothingToVisit) {
  JsonReader().read("[[],{}]", [](JsonCursor& cursor) {
    cursor.elements([&] {
      if (cursor.atArray()) return cursor.elements([] { ADD_FAILURE(); });
      cursor.members([](std::string_view) { ADD_FAILURE(); });
    });
  });
}

TEST(JsonCursorTest, ChecksWhatItSkips) {
  EXPECT_EQ(skipError("[{\"a\":[1,2.5,\"\\u00e9\",{}]},null,true]"), "(nothing was thrown)");
  EXPECT_EQ(skipError("[1,tru]"), "not valid JSON: unexpected text at byte 3");
  EXPECT_EQ(skipError("[1,{\"a\" 1}]"), "not valid JSON: unexpected text at byte 8");
  EXPECT_EQ(skipError("[1,]"), "not valid JSON: unexpected text at byte 3");
  EXPECT_EQ(skipError("{\"a\":1,}"), "not valid JSON: unexpected text at byte 7");
  EXPECT_EQ(skipError("[1}"), "not valid JSON: unexpected text at byte 2");
  EXPECT_EQ(skipError("[[1]"), "not valid JSON: the text ends too early");
  EXPECT_EQ(skipError("{\"a\""), "not valid JSON: the text ends too early");
  EXPECT_EQ(skipError(R"({"\x":1})"), "not valid JSON: a string holds a malformed escape");
  EXPECT_EQ(skipError(R"(["\udc00"])"), "not valid JSON: a string holds an escaped lone surrogate");
  EXPECT_EQ(skipError("[1e999]"),
            "not valid JSON: the number at byte 1 is malformed or beyond the range of a double");
}

TEST(JsonCursorTest, NothingMayFollowTheValue) {
  EXPECT_EQ(skipError("[] []"), "not valid JSON: unexpected text at byte 3");
  EXPECT_EQ(skipError("1 2"), "not valid JSON: unexpected text at byte 2");
  EXPECT_EQ(skipError("\"a\"b"), "not valid JSON: unexpected text at byte 3");
}

TEST(JsonCursorTest, AskingForTheWrongContainerFails) {
  const auto errorOf = [](std::string_view text) {
    return errorText<DecodeError>([&] {
      JsonReader().read(text, [](JsonCursor& cursor) { cursor.members([](std::string_view) {}); });
    });
  };
  EXPECT_EQ(errorOf("[]"), "not valid JSON: unexpected text at byte 0");
  EXPECT_EQ(errorOf("7"), "not valid JSON: unexpected text at byte 0");
}

}  // namespace
}  // namespace corvane::testing
