#include "corvanectl/terminal/DisplayText.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

using namespace ctl;

TEST(OneLine, JoinsLinesAndBlanks) {
  EXPECT_EQ(oneLine("  a\r\n\tb   c\n"), "a b c");
  EXPECT_EQ(oneLine("\n\n"), "");
}

TEST(OneLine, LetsNoControlCharacterThrough) {
  EXPECT_EQ(oneLine("a\033[2Jb"), "a\\u001b[2Jb");
  EXPECT_EQ(oneLine("bad \xFF byte"), "bad \xEF\xBF\xBD byte");
}

TEST(CleanLines, KeepsLinesAndNothingElseThatControls) {
  EXPECT_EQ(cleanLines(" one\r\n\n\ttwo  three\033[2J\n \n"), "one\n\n two  three\\u001b[2J");
  EXPECT_EQ(cleanLines("bad \xFF byte"), "bad \xEF\xBF\xBD byte");
  EXPECT_EQ(cleanLines("\n \r\n"), "");
}

TEST(CutToColumns, LeavesWhatFits) {
  EXPECT_EQ(cutToColumns("0123456789", 10), "0123456789");
  EXPECT_EQ(cutToColumns("", 0), "");
}

TEST(CutToColumns, ShowsThatItCut) {
  EXPECT_EQ(cutToColumns("0123456789", 9), "0123456…");
  EXPECT_EQ(cutToColumns("0123456789", 2), "…");
  EXPECT_EQ(cutToColumns("0123456789", 1), "");
}

TEST(CutToColumns, CountsWideCharactersTwiceAndNeverSplitsOne) {
  EXPECT_EQ(cutToColumns("日本語", 6), "日本語");
  EXPECT_EQ(cutToColumns("日本語", 5), "日…");
  EXPECT_EQ(cutToColumns("äöüß", 4), "äöüß");
  EXPECT_EQ(cutToColumns("äöüß", 3), "ä…");
}

TEST(WrapToColumns, BreaksBetweenWords) {
  EXPECT_EQ(wrapToColumns("one two three", 20, 0), "one two three");
  EXPECT_EQ(wrapToColumns("one two three", 13, 0), "one two three");
  EXPECT_EQ(wrapToColumns("one two three", 12, 0), "one two\nthree");
  EXPECT_EQ(wrapToColumns("one two three", 12, 4), "one two\n    three");
  EXPECT_EQ(wrapToColumns("one enormous word", 7, 4), "one\n    enormous\n    word");
  EXPECT_EQ(wrapToColumns("日本 語", 5, 0), "日本\n語");
  EXPECT_EQ(wrapToColumns("", 5, 2), "");
}

TEST(DisplaySeconds, FitsTheSize) {
  EXPECT_EQ(displaySeconds(0.34), "0.3 s");
  EXPECT_EQ(displaySeconds(1), "1 s");
  EXPECT_EQ(displaySeconds(9.96), "10 s");
  EXPECT_EQ(displaySeconds(59.4), "59 s");
  EXPECT_EQ(displaySeconds(125), "2 min 5 s");
  EXPECT_EQ(displaySeconds(-1), "0 s");
}

TEST(FirstSentence, EndsAtTheFirstStop) {
  EXPECT_EQ(firstSentence("Run tests now. Then wait."), "Run tests now.");
  EXPECT_EQ(firstSentence("Ready?\nThen go."), "Ready?");
  EXPECT_EQ(firstSentence("Only one."), "Only one.");
}

TEST(FirstSentence, IsNotFooledByStopsInside) {
  EXPECT_EQ(firstSentence("Wait (e.g. for 1.5 s) in x.json. Next."),
            "Wait (e.g. for 1.5 s) in x.json.");
}

TEST(FirstSentence, EndsAtAnEmptyLine) {
  EXPECT_EQ(firstSentence("A heading\n\nAnd more."), "A heading");
  EXPECT_EQ(firstSentence(""), "");
}

}  // namespace
}  // namespace corvane::testing
