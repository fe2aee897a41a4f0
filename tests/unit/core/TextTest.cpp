#include <gtest/gtest.h>

#include <clocale>
#include <set>
#include <string>

#include "CorvaneCore/text/Base64.h"
#include "CorvaneCore/text/Unicode.h"
#include "CorvaneCore/text/Uuid.h"

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
  EXPECT_EQ(escapeControls("\u2027\u2028\u2029"), "\u2027\\u2028\\u2029");
  EXPECT_EQ(escapeControls("\xC3\xA9 \xF0\x9F\x98\x80 \\ \""), "\xC3\xA9 \xF0\x9F\x98\x80 \\ \"");
  EXPECT_EQ(escapeControls(""), "");
}

// Fails when a control that turns the text around it is left, or a neighbour of one is not.
TEST(Utf8Test, EscapesWhatChangesTheDirectionOfText) {
  EXPECT_EQ(escapeControls("\u061B\u061C\u061D"), "\u061B\\u061c\u061D");
  EXPECT_EQ(escapeControls("\u200D\u200E\u200F\u2010"), "\u200D\\u200e\\u200f\u2010");
  EXPECT_EQ(escapeControls("\u202A\u202B\u202C\u202D\u202E\u202F"),
            "\\u202a\\u202b\\u202c\\u202d\\u202e\u202F");
  EXPECT_EQ(escapeControls("\u2065\u2066\u2067\u2068\u2069\u206A"),
            "\u2065\\u2066\\u2067\\u2068\\u2069\u206A");
  EXPECT_EQ(escapeControls("חנות"), "חנות");
}

TEST(Utf8Test, EscapingLeavesForeignBytesInPlace) {
  EXPECT_EQ(escapeControls("a\xFF\nb"), "a\xFF\\nb");
}

bool same(std::string_view left, std::string_view right) {
  return foldCase(left) == foldCase(right);
}

TEST(CaseFoldingTest, LettersOfManyScriptsMatchWhateverTheirCase) {
  EXPECT_TRUE(same("My App", "mY aPP"));
  EXPECT_TRUE(same("É", "é"));
  EXPECT_TRUE(same("ΣΊΣΥΦΟΣ", "σίσυφος"));
  EXPECT_TRUE(same("Σ", "ς"));
  EXPECT_TRUE(same("ЖУРНАЛ", "журнал"));
  EXPECT_TRUE(same("Ǆ", "ǆ"));
  EXPECT_TRUE(same("Ǆ", "ǅ"));
  EXPECT_TRUE(same("ՀԱՅ", "հայ"));
  EXPECT_TRUE(same("Ꭰ", "ꭰ"));
  EXPECT_TRUE(same("\u212A", "k"));
  EXPECT_TRUE(same("\U00010400", "\U00010428"));
}

TEST(CaseFoldingTest, DifferentTextsStayDifferent) {
  EXPECT_FALSE(same("a", "b"));
  EXPECT_FALSE(same("e", "é"));
  EXPECT_FALSE(same("a", "a "));
  EXPECT_FALSE(same("", "a"));
  EXPECT_FALSE(same("ı", "i"));
  EXPECT_FALSE(same("1", "１"));
}

TEST(CaseFoldingTest, ALetterStaysOneLetter) {
  EXPECT_TRUE(same("STRAẞE", "straße"));
  EXPECT_TRUE(same("ß", "ß"));
  EXPECT_FALSE(same("ß", "ss"));
  EXPECT_FALSE(same("Maße", "MASSE"));
  EXPECT_FALSE(same("ﬁ", "fi"));
}

TEST(CaseFoldingTest, HowAnAccentIsComposedMeansNothing) {
  EXPECT_TRUE(same("\u00C9tude", "e\u0301tude"));
  EXPECT_TRUE(same("\u1E9B\u0323", "\u1E9B\u0323"));
  EXPECT_TRUE(same("\uAC00", "\u1100\u1161"));
  EXPECT_TRUE(same("\u1FB3", "\u03B1\u0345"));
  EXPECT_TRUE(same("\u1FB3", "\u0391\u0345"));
}

TEST(CaseFoldingTest, ADottedCapitalKeepsItsDot) {
  EXPECT_TRUE(same("\u0130x", "I\u0307x"));
  EXPECT_TRUE(same("\u0130x", "i\u0307X"));
  EXPECT_FALSE(same("\u0130x", "ix"));
  EXPECT_FALSE(same("\u1FB3", "\u03B1\u03B9"));
}

TEST(CaseFoldingTest, OtherTextPassesThrough) {
  EXPECT_EQ(foldCase(""), "");
  EXPECT_EQ(foldCase("日本 🚀 7-_'\"/\\"), "日本 🚀 7-_'\"/\\");
  EXPECT_EQ(foldCase(std::string_view("A\0B\n", 4)), std::string_view("a\0b\n", 4));
  EXPECT_EQ(foldCase(std::string(100000, 'X')), std::string(100000, 'x'));
}

TEST(CaseFoldingTest, TheLocaleMeansNothing) {
  ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  EXPECT_EQ(foldCase("ÀI"), "ài");
}

TEST(Base64Test, PadsToWholeGroups) {
  EXPECT_EQ(base64(""), "");
  EXPECT_EQ(base64("f"), "Zg==");
  EXPECT_EQ(base64("fo"), "Zm8=");
  EXPECT_EQ(base64("foo"), "Zm9v");
  EXPECT_EQ(base64("foob"), "Zm9vYg==");
  EXPECT_EQ(base64("fooba"), "Zm9vYmE=");
  EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
}

TEST(Base64Test, TakesEveryByte) {
  EXPECT_EQ(base64(std::string_view("\0", 1)), "AA==");
  EXPECT_EQ(base64("\xff\xff\xff"), "////");
  EXPECT_EQ(base64("\xfb\xef\xbe"), "++++");
  EXPECT_EQ(base64(std::string_view("\x00\x10\x83\x10\x51\x87\x20\x92\x8b\x30\xd3\x8f", 12)),
            "ABCDEFGHIJKLMNOP");
}

TEST(Base64Test, DecodesEveryLength) {
  EXPECT_EQ(decodeBase64(""), "");
  EXPECT_EQ(decodeBase64("Zg=="), "f");
  EXPECT_EQ(decodeBase64("Zm8="), "fo");
  EXPECT_EQ(decodeBase64("Zm9v"), "foo");
  EXPECT_EQ(decodeBase64("Zm9v\nYmFy\r\n"), "foobar");
  EXPECT_EQ(decodeBase64("+/+/"), "\xFB\xFF\xBF");
}

TEST(Base64Test, RefusesOtherText) {
  for (const char* text :
       {"Zg", "Zg=", "Z", "Z===", "=", "====", "Zg=g", "Zg==Zg==", "Zm9v!", "Zm-v", "Zm9v="}) {
    EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
  }
}

TEST(Base64Test, CanBeReadBack) {
  std::string bytes;
  unsigned state = 1;
  for (int length = 0; length < 300; ++length) {
    const std::string text = base64(bytes);
    EXPECT_EQ(text.size() % 4, 0U);
    ASSERT_EQ(decodeBase64(text), bytes);
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
}

TEST(UuidTest, FreshIdsAreCanonicalRandomUuids) {
  std::set<std::string> seen;
  std::set<char> variants;
  std::array<std::set<char>, 36> digitsAt;
  for (int round = 0; round < 2'000; ++round) {
    const std::string id = makeRequestId();
    ASSERT_EQ(id.size(), 36U);
    EXPECT_EQ(id.find_first_not_of("0123456789abcdef-"), std::string::npos) << id;
    EXPECT_EQ(parseRequestId(id), id);
    EXPECT_EQ(id[14], '4') << id;
    variants.insert(id[19]);
    for (std::size_t i = 0; i < id.size(); ++i) digitsAt[i].insert(id[i]);
    EXPECT_TRUE(seen.insert(id).second) << "seen before: " << id;
  }
  EXPECT_EQ(variants, (std::set<char>{'8', '9', 'a', 'b'}));
  for (std::size_t i = 0; i < digitsAt.size(); ++i) {
    const bool dash = i == 8 || i == 13 || i == 18 || i == 23;
    const std::size_t expected = dash || i == 14 ? 1 : i == 19 ? 4 : 16;
    EXPECT_EQ(digitsAt[i].size(), expected) << "at position " << i;
  }
}

TEST(UuidTest, AnyCaseIsReadAsLowerCase) {
  EXPECT_EQ(parseRequestId("0b5f7a0e-9C1D-4e2f-8A3b-ABCDEF012345"),
            "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345");
  EXPECT_EQ(parseRequestId("FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"),
            "ffffffff-ffff-ffff-ffff-ffffffffffff");
  EXPECT_EQ(parseRequestId("00000000-0000-0000-0000-000000000000"),
            "00000000-0000-0000-0000-000000000000");
}

TEST(UuidTest, RefusesEverythingElse) {
  for (const char* text :
       {"", "-", "0b5f7a0e", "0b5f7a0e9c1d4e2f8a3babcdef012345",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef0123456",
        "{0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345}", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234g",
        "0b5f7a0e-9c1d-4e2f-8a3babcdef-012345", "0b5f7a0e_9c1d_4e2f_8a3b_abcdef012345",
        " b5f7a0e-9c1d-4e2f-8a3b-abcdef012345", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234\n",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef0123\xC3\xA9", "../../../../../../../../../etc/passwd",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234/", "-b5f7a0e-9c1d-4e2f-8a3b-abcdef012345",
        "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234`", "0b5f7a0e-9c1d-4e2f-8a3b-abcdef01234@"}) {
    EXPECT_EQ(parseRequestId(text), std::nullopt) << text;
  }
  std::string withNul = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";
  withNul.back() = '\0';
  EXPECT_EQ(parseRequestId(withNul), std::nullopt);
}

// Fails when accents take columns, or pictures and wide letters only one.
TEST(Text, CountsTheColumnsOfATerminal) {
  EXPECT_EQ(countColumns(""), 0U);
  EXPECT_EQ(countColumns("Pay — now…"), 10U);
  EXPECT_EQ(countColumns("e\u0301"), 1U);
  EXPECT_EQ(countColumns("日本"), 4U);
  EXPECT_EQ(countColumns("🎉"), 2U);
  EXPECT_EQ(countColumns("\u2764\uFE0F"), 2U);
}

}  // namespace
}  // namespace corvane::testing
