#include "CorvaneCore/json/JsonWriter.h"

#include <gtest/gtest.h>

#include "CorvaneCore/json/JsonReader.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane::testing {
namespace {

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
