#include "CorvaneCore/text/Unicode.h"

#include <gtest/gtest.h>

#include <clocale>

namespace corvane::testing {
namespace {

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

}  // namespace
}  // namespace corvane::testing
