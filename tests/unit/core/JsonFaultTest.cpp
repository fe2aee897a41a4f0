#include "CorvaneCore/json/JsonFault.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"

namespace corvane::testing {
namespace {

/// Where reading `text` fails.
std::string placeIn(std::string_view text) {
  try {
    (void)readJson(text);
  } catch (const DecodeError& error) {
    return describePlace(text, faultIn(text, error));
  }
  return "nowhere";
}

TEST(JsonFault, IsFoundAtTheTokenThatIsWrong) {
  EXPECT_EQ(placeIn("{\"a\":}"), "line 1, column 6");
  EXPECT_EQ(placeIn("{\n  \"a\": 1,\n  \"b\": tru\n}"), "line 3, column 8");
  EXPECT_EQ(placeIn("{\"a\":01}"), "line 1, column 6");
  EXPECT_EQ(placeIn("{}\n{}"), "line 2, column 1");
}

TEST(JsonFault, IsAtTheEndOfATextThatEndsTooEarly) {
  EXPECT_EQ(placeIn("[1,\n"), "line 2, column 1");
  EXPECT_EQ(placeIn(""), "line 1, column 1");
}

// Fails when the first string is taken for the wrong one, or columns count bytes.
TEST(JsonFault, IsFoundInStrings) {
  EXPECT_EQ(placeIn("[\"ä\\\"\", \"\\x\"]"), "line 1, column 9");
  EXPECT_EQ(placeIn("[\"a\",\n \"b"), "line 2, column 2");
  EXPECT_EQ(placeIn("[\"a\tb\"]"), "line 1, column 4");
  EXPECT_EQ(placeIn("[\"\\ud800\"]"), "line 1, column 2");
}

TEST(JsonFault, IsFoundWhereTheTextIsNoUtf8) {
  EXPECT_EQ(placeIn("{\"a\":\n\"b\xff\"}"), "line 2, column 3");
  EXPECT_EQ(placeIn("\xEF\xBB\xBF{}"), "line 1, column 1");
}

}  // namespace
}  // namespace corvane::testing
