#include "CorvaneCore/json/JsonReader.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/ErrorText.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
namespace {

std::string membersOf(std::string_view text, const std::vector<std::string_view>& names) {
  return toJson(readMembers(text, names));
}

TEST(JsonMembersTest, KeepsTheNamedMembersOnly) {
  const char* text = R"({"status":"passed","tests":[{"status":"failed","a":[1,{}]}],"n":1.5,)"
                     R"("updatedAt":"x","o":{"status":null},"z":null,"t":true})";
  EXPECT_EQ(membersOf(text, {"status"}), R"({"status":"passed"})");
  EXPECT_EQ(membersOf(text, {"tests", "n"}),
            R"({"n":1.5,"tests":[{"a":[1,{}],"status":"failed"}]})");
  EXPECT_EQ(membersOf(text, {"o", "z", "t"}), R"({"o":{"status":null},"t":true,"z":null})");
  EXPECT_EQ(membersOf(text, {"absent"}), "{}");
  EXPECT_EQ(membersOf(text, {}), "{}");
}

TEST(JsonMembersTest, GivesWhatReadingTheWholeWouldGive) {
  const char* text = R"({"b":[[{"a":1}],{"b":{"c":[]}}],"a":{"b":0.5},"c":"a","b":[2,{"a":[]}]})";
  const AnyCodable whole = readJson(text);
  for (const char* name : {"a", "b", "c"}) {
    const JsonObject members = readMembers(text, {name});
    ASSERT_EQ(members.size(), 1U);
    EXPECT_EQ(*members.find(name), *whole.find(name));
  }
  EXPECT_EQ(AnyCodable(readMembers(text, {"a", "b", "c"})), whole);
}

TEST(JsonMembersTest, NamesMatchNoDeeperMember) {
  EXPECT_EQ(membersOf(R"({"a":{"b":1},"c":[{"b":2}]})", {"b"}), "{}");
}

TEST(JsonMembersTest, LastOfDuplicateKeysWins) {
  EXPECT_EQ(membersOf(R"({"a":1,"b":2,"a":[3]})", {"a"}), R"({"a":[3]})");
}

TEST(JsonMembersTest, RefusesWhatIsNoObject) {
  for (const char* text : {"null", "true", "1", "0.5", R"("a")", "[]", R"([{"a":1}])"}) {
    EXPECT_EQ(errorText<DecodeError>([&] { (void)readMembers(text, {"a"}); }), "expected an object")
        << text;
  }
}

TEST(JsonMembersTest, ChecksTheWholeText) {
  for (const char* text :
       {R"({"a":1,"b":tru})", R"({"a":1,"b":[1,]})", R"({"a":1})}", R"({"a":1)",
        R"({"a":1,"b":1e400})", R"({"a":1,"b":"\ud800"})", "{\"a\":1,\"b\":\"\xFF\"}",
        R"({"a":1,"b":"\x"})", R"({"a":1,"\x":2})", ""}) {
    EXPECT_THROW((void)readMembers(text, {"a"}), DecodeError) << text;
  }
}

}  // namespace
}  // namespace corvane::testing
