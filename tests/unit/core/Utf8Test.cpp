#include "CorvaneCore/text/Unicode.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

constexpr const char* replacement = "\xEF\xBF\xBD";

TEST(Utf8Test, KnowsValidText) {
  for (const char* text :
       {"", "plain", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xEF\xBB\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "a\xC3\xA9z"}) {
    EXPECT_TRUE(isValidUtf8(text)) << text;
    EXPECT_EQ(toValidUtf8(text), text);
  }
  EXPECT_TRUE(isValidUtf8(std::string_view("a\0b", 3)));
  EXPECT_EQ(toValidUtf8(std::string_view("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Utf8Test, KnowsInvalidText) {
  for (const char* text : {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3z", "\xE2\x82",
                           "\xE2\x82z", "\xE0\x80\x80", "\xE0\x9F\xBF", "\xED\xA0\x80",
                           "\xED\xBF\xBF", "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xF0\x9F\x98",
                           "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFE", "\xFF"}) {
    EXPECT_FALSE(isValidUtf8(text));
    EXPECT_FALSE(isValidUtf8("before" + std::string(text)));
    EXPECT_FALSE(isValidUtf8(text + std::string("after")));
    EXPECT_TRUE(isValidUtf8(toValidUtf8(text)));
  }
}

TEST(Utf8Test, ReplacesEachByteThatIsNotText) {
  EXPECT_EQ(toValidUtf8("a\xFFz"), "a" + std::string(replacement) + "z");
  EXPECT_EQ(toValidUtf8("\xC3\xA9\xC3"), "\xC3\xA9" + std::string(replacement));
  EXPECT_EQ(toValidUtf8("\xF0\x9F\x98!"),
            std::string(replacement) + replacement + replacement + "!");
}

TEST(Utf8Test, TrimsUnicodeWhiteSpaceAtTheEnds) {
  EXPECT_EQ(trimWhitespace(""), "");
  EXPECT_EQ(trimWhitespace("  a b  "), "a b");
  EXPECT_EQ(trimWhitespace("\t\n\v\f\r a \r\f\v\n\t"), "a");
  EXPECT_EQ(trimWhitespace(" \t\n"), "");
  // No-break space, next line, em space, line and paragraph separator, ideographic space.
  const std::string blanks =
      "\xC2\xA0\xC2\x85\xE2\x80\x83\xE2\x80\xA8\xE2\x80\xA9\xE3\x80\x80\xE1\x9A\x80";
  EXPECT_EQ(trimWhitespace(blanks), "");
  EXPECT_EQ(trimWhitespace(blanks + "\xC3\xA9" + blanks + "\xF0\x9F\x98\x80" + blanks),
            "\xC3\xA9" + blanks + "\xF0\x9F\x98\x80");
  // A zero width joiner and control characters are no white space.
  EXPECT_EQ(trimWhitespace("\xE2\x80\x8D"), "\xE2\x80\x8D");
  EXPECT_EQ(trimWhitespace("\x01 \x7F"), "\x01 \x7F");
}

TEST(Utf8Test, TrimGivesAPartOfItsArgument) {
  const std::string text = "  inner ";
  const std::string_view trimmed = trimWhitespace(text);
  EXPECT_EQ(trimmed.data(), text.data() + 2);
}

TEST(Utf8Test, CountsCodePoints) {
  EXPECT_EQ(countCharacters(""), 0U);
  EXPECT_EQ(countCharacters("abc\n"), 4U);
  EXPECT_EQ(countCharacters("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), 3U);
  EXPECT_EQ(countCharacters("e\xCC\x81"), 2U);
}

TEST(Utf8Test, LowersAsciiCapitalsOnly) {
  EXPECT_EQ(asciiLowercase("AZaz09@[`{"), "azaz09@[`{");
  EXPECT_EQ(asciiLowercase("\xC3\x89"), "\xC3\x89");
}

TEST(Utf8Test, EscapesControlsSoThatTextStaysOnOneLine) {
  EXPECT_EQ(escapeControls("a\nb\rc\td"), R"(a\nb\rc\td)");
  EXPECT_EQ(escapeControls(std::string_view("\0\x01\x1B\x1F\x7F", 5)),
            R"(\u0000\u0001\u001b\u001f\u007f)");
  EXPECT_EQ(escapeControls("\xC2\x80\xC2\x9F\xC2\xA0"), "\\u0080\\u009f\xC2\xA0");
  EXPECT_EQ(escapeControls("\xE2\x80\xA8\xE2\x80\xA9"), R"(\u2028\u2029)");
  EXPECT_EQ(escapeControls("\xC3\xA9 \xF0\x9F\x98\x80 \\ \""), "\xC3\xA9 \xF0\x9F\x98\x80 \\ \"");
  EXPECT_EQ(escapeControls(""), "");
}

TEST(Utf8Test, EscapingLeavesForeignBytesInPlace) {
  EXPECT_EQ(escapeControls("a\xFF\nb"), "a\xFF\\nb");
}

}  // namespace
}  // namespace corvane::testing
