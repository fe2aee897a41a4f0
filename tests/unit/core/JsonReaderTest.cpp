#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "tests/support/ErrorText.h"
#include "tests/support/PrintJson.h"

namespace corvane::testing {
namespace {

std::string rereading(std::string_view text) {
  return toJson(readJson(text));
}

std::string readError(std::string_view text) {
  return errorText<DecodeError>([&] { (void)readJson(text); });
}

TEST(JsonReaderTest, ReadsEveryKindAtTheTop) {
  EXPECT_EQ(readJson("null"), AnyCodable());
  EXPECT_EQ(readJson("true"), AnyCodable(true));
  EXPECT_EQ(readJson("false"), AnyCodable(false));
  EXPECT_EQ(readJson("-7"), AnyCodable(-7));
  EXPECT_EQ(readJson("0.25"), AnyCodable(0.25));
  EXPECT_EQ(readJson(R"("text")"), AnyCodable("text"));
  EXPECT_EQ(readJson("[]"), AnyCodable(AnyCodable::Array()));
  EXPECT_EQ(readJson("{}"), AnyCodable(AnyCodable::Object()));
}

TEST(JsonReaderTest, WhiteSpaceCarriesNoMeaning) {
  EXPECT_EQ(rereading(" \t\r\n{ \"a\" : [ 1 , true , { } ] , \"b\" : \" \" }\n\r\t "),
            R"({"a":[1,true,{}],"b":" "})");
  EXPECT_EQ(rereading("\n 1 \n"), "1");
  EXPECT_EQ(rereading(" null"), "null");
  EXPECT_EQ(rereading("[\n]"), "[]");
}

TEST(JsonReaderTest, ReadsEveryEscape) {
  EXPECT_EQ(readJson(R"("\"\\\/\b\f\n\r\t")"), AnyCodable("\"\\/\b\f\n\r\t"));
  EXPECT_EQ(readJson(R"("\u0041\u00e9\u00E9\u20ac\ud83d\ude00\uD83D\uDE00")"),
            AnyCodable("A\xC3\xA9\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\xF0\x9F\x98\x80"));
  EXPECT_EQ(readJson(R"("\u0000")"), AnyCodable(std::string(1, '\0')));
  EXPECT_EQ(readJson(R"("\udbff\udfff\ue000\uffff")"),
            AnyCodable("\xF4\x8F\xBF\xBF\xEE\x80\x80\xEF\xBF\xBF"));
  // An escaped backslash before a "u" begins no escape.
  EXPECT_EQ(readJson(R"("\\ud800 \\\\udc00")"), AnyCodable(R"(\ud800 \\udc00)"));
  EXPECT_EQ(rereading(R"({"\u0061\n":1})"), R"({"a\n":1})");
}

TEST(JsonReaderTest, TextThatLooksLikeStructureStaysTextInStrings) {
  EXPECT_EQ(rereading(R"(["],[","}{\"",":,","//"])"), R"(["],[","}{\"",":,","//"])");
}

TEST(JsonReaderTest, NumbersBecomeTheKindTheirValueHas) {
  EXPECT_EQ(rereading("[1, 1.0, 1e3, -0.0, 1.5, 9223372036854775807, 9007199254740993.0]"),
            "[1,1,1000,0,1.5,9223372036854775807,9007199254740993]");
  EXPECT_NE(readJson("9223372036854775807").integer(), nullptr);
  EXPECT_NE(readJson("9223372036854775808").number(), nullptr);
  EXPECT_NE(readJson("-9223372036854775808").integer(), nullptr);
  EXPECT_NE(readJson("-9223372036854775809").number(), nullptr);
}

TEST(JsonReaderTest, LastOfDuplicateKeysWins) {
  EXPECT_EQ(rereading(R"({"a":1,"b":2,"a":{"c":[]},"a":3})"), R"({"a":3,"b":2})");
  EXPECT_EQ(rereading(R"({"a":1,"\u0061":2})"), R"({"a":2})");
}

void expectRefused(std::initializer_list<std::string_view> texts) {
  for (const std::string_view text : texts) {
    const std::string error = readError(text);
    EXPECT_TRUE(error.starts_with("not valid JSON")) << text << " gives " << error;
    EXPECT_EQ(error.find_first_of("\r\n"), std::string::npos) << error;
  }
}

TEST(JsonReaderTest, RefusesBrokenStructure) {
  expectRefused({"", " ", "\n", "[", "]", "{", "}", "[[]", "[]]", "{}}", "[{]", "[}", "{]", "[1}",
                 R"({"a":1])", ",", ":", "\\"});
  expectRefused({"1 2", "1,2", "1]", "],[", "1],[2", "[1],[2]", "{},{}", "[1]x", "null null", "[],",
                 R"("a""b")", R"("a":1)"});
  expectRefused({"[1,]", "[,1]", "[1,,2]", "[,]", "[1 2]", "[1:2]", R"(["a":1])", "[1;2]", "[1[]]",
                 "[[]1]", "[{}[]]"});
  expectRefused({R"({"a"})", R"({"a":})", R"({"a":1,})", "{,}", "{:1}", R"({"a" 1})", R"({"a",1})",
                 R"({"a":1 "b":2})", R"({"a"::1})", R"({"a":1,,"b":2})", R"({"a":1:2})"});
  expectRefused({"{a:1}", "{'a':1}", "{1:1}", "{null:1}", "{[]:1}"});
}

TEST(JsonReaderTest, RefusesOtherWords) {
  expectRefused({"nul",          "nulll",        "Null",        "NULL",      "tru",
                 "truex",        "True",         "fals",        "falsee",    "a",
                 "'a'",          "undefined",    "[nul]",       "[null1]",   "[truefalse]",
                 R"([true"a"])", R"(["a"true])", R"(["a""b"])", R"([1"a"])", R"(["a"1])"});
}

TEST(JsonReaderTest, RefusesOtherNumbers) {
  expectRefused({"+1",     "01",  "-",        "-01",       "1.",    ".5",      "1e",
                 "1e+",    "0x1", "1a",       "[1.]",      "[-]",   "[1e5.5]", "[--1]",
                 "[1 .5]", "NaN", "Infinity", "-Infinity", "[NaN]", "1e400",   "[-1e400]"});
}

TEST(JsonReaderTest, RefusesBrokenStrings) {
  expectRefused({R"(")", R"("a)", R"(a")", R"("\")", R"("\)"});
  expectRefused({R"("\x41")", R"("\a")", R"("\'")", R"("\u")", R"("\u12")", R"("\u123")",
                 R"("\u12g4")", R"("\u-123")", R"("\u+123")", R"("\U0041")", "\"\\\n\"",
                 R"({"\x":1})", R"({"\u00":1})", R"(\u0041)", R"([\n])"});
  expectRefused({"\"a\nb\"", "\"\t\"", "\"\r\"", "\"\x01\"", "\"\x1F\"", "{\"a\nb\":1}"});
}

TEST(JsonReaderTest, RefusesCommentsAndOtherWhiteSpace) {
  expectRefused({"// comment\n1", "/* comment */ 1", "1 // comment", "[1] # comment"});
  expectRefused({"\f1", "\v1", "[1,\f2]", "\x1E[]", "\xC2\xA0[]", "[]\xE2\x80\xA8"});
}

TEST(JsonReaderTest, SaysWhatIsWrongWithTheText) {
  EXPECT_EQ(readError(""), "not valid JSON: the text is empty");
  EXPECT_EQ(readError("\xEF\xBB\xBF{}"), "not valid JSON: the text begins with a byte order mark");
  EXPECT_EQ(readError(std::string_view("{}\0", 3)), "not valid JSON: unexpected text at byte 2");
  EXPECT_EQ(readError(std::string_view("\"a\0b\"", 5)),
            "not valid JSON: a string holds an unescaped control character");
  EXPECT_EQ(readError("\"\xFF\""), "not valid JSON: the text is not valid UTF-8");
  EXPECT_EQ(readError("\"a\nb\""), "not valid JSON: a string holds an unescaped control character");
  EXPECT_EQ(readError("[\"abc]"), "not valid JSON: a string is not closed");
  EXPECT_EQ(readError(R"(["\ud800"])"), "not valid JSON: a string holds an escaped lone surrogate");
  EXPECT_EQ(readError("[10, 1e999]"),
            "not valid JSON: the number at byte 5 is malformed or beyond the range of a double");
  EXPECT_EQ(readError("[10, 01]"),
            "not valid JSON: the number at byte 5 is malformed or beyond the range of a double");
  EXPECT_EQ(readError(R"(["\q"])"), "not valid JSON: a string holds a malformed escape");
  EXPECT_EQ(readError("[true, nope]"), "not valid JSON: unexpected text at byte 7");
  EXPECT_EQ(readError("[true, \"x\" 1]"), "not valid JSON: unexpected text at byte 11");
  EXPECT_EQ(readError("[true, "), "not valid JSON: the text ends too early");
}

TEST(JsonReaderTest, RefusesInvalidUtf8) {
  for (const char* bytes : {"\x80",
                            "\xBF",
                            "\xC0\x80",
                            "\xC1\xBF",
                            "\xC3",
                            "\xC3\x28",
                            "\xE2\x82",
                            "\xE2\x28\xA1",
                            "\xE0\x80\x80",
                            "\xE0\x9F\xBF",
                            "\xED\xA0\x80",
                            "\xED\xBF\xBF",
                            "\xF0\x80\x80\x80",
                            "\xF0\x8F\xBF\xBF",
                            "\xF0\x9F\x98",
                            "\xF4\x90\x80\x80",
                            "\xF5\x80\x80\x80",
                            "\xF8\x88\x80\x80\x80",
                            "\xFE",
                            "\xFF"}) {
    const std::string broken = bytes;
    EXPECT_EQ(readError("\"" + broken + "\""), "not valid JSON: the text is not valid UTF-8");
    EXPECT_EQ(readError("[\"a\", \"" + broken + "\"]"),
              "not valid JSON: the text is not valid UTF-8");
    EXPECT_EQ(readError("{\"" + broken + "\":1}"), "not valid JSON: the text is not valid UTF-8");
    EXPECT_TRUE(readError("[1," + broken + "]").starts_with("not valid JSON"));
    EXPECT_TRUE(readError("\"ends in" + broken).starts_with("not valid JSON"));
  }
}

TEST(JsonReaderTest, AcceptsTheEdgesOfUtf8) {
  const std::string edges =
      "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
      "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\xEF\xBB\xBF";
  EXPECT_EQ(readJson("\"" + edges + "\""), AnyCodable(edges));
}

TEST(JsonReaderTest, RefusesEscapedLoneSurrogates) {
  for (const char* text :
       {R"("\ud800")", R"("\udbff")", R"("\udc00")", R"("\udfff")", R"("\uD800\uD800")",
        R"("\udc00\ud800")", R"("\ud800x")", R"("\ud800\n")", R"("\ud800\u0041")",
        R"("\ud800\\udc00")", R"("\\\ud800")", R"("\ud83d\ude00\ude00")", R"("\ud83d \ude00")",
        R"("\ud800\udbff\udc00")", R"("\ud800\ue000")", R"("\ud800\uffff")", R"({"\ud800":1})",
        R"(["\ud800","\udc00"])"}) {
    EXPECT_EQ(readError(text), "not valid JSON: a string holds an escaped lone surrogate") << text;
  }
}

TEST(JsonReaderTest, EveryPrefixOfATextIsRefused) {
  const std::string text =
      R"({"a":[1,-2.5e3,"x\u00e9\ud83d\ude00\n",true,false,null,{"b":{}},[[]]],"c":""})";
  ASSERT_EQ(rereading(text), rereading(rereading(text)));
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_TRUE(readError(text.substr(0, length)).starts_with("not valid JSON"))
        << text.substr(0, length);
  }
}

TEST(JsonReaderTest, ServesOneTextAfterAnother) {
  JsonReader reader;
  const std::string large = "\"" + std::string(std::size_t{3} << 20, 'x') + "\"";
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(toJson(reader.read(R"({"a":"first"})")), R"({"a":"first"})");
    EXPECT_THROW((void)reader.read("[1,{\"a\":[tru"), DecodeError);
    EXPECT_THROW((void)reader.read("\"\xFF\""), DecodeError);
    EXPECT_EQ(toJson(reader.read(large)), large);
    EXPECT_THROW((void)reader.read(large + "x"), DecodeError);
    EXPECT_EQ(toJson(reader.read("[]")), "[]");
  }
  JsonReader moved = std::move(reader);
  EXPECT_EQ(toJson(moved.read("1")), "1");
}

TEST(JsonReaderTest, ReadsFromTheMiddleOfALargerBuffer) {
  const std::string_view buffer = "1234567,true]";
  EXPECT_EQ(readJson(buffer.substr(0, 3)), AnyCodable(123));
  EXPECT_EQ(readJson(buffer.substr(8, 4)), AnyCodable(true));
}

TEST(JsonReaderTest, ReadsWideValuesWhole) {
  std::string array = "[";
  std::string object = "{";
  for (int i = 100000; i < 200000; ++i) {
    array += std::to_string(i) + ",";
    object += "\"" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  }
  array.back() = ']';
  object.back() = '}';
  EXPECT_EQ(rereading(array), array);
  EXPECT_EQ(rereading(object), object);
}

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
