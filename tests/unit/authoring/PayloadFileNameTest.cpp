#include <gtest/gtest.h>

#include "CorvaneCore/text/Unicode.h"
#include "tests/support/TemporaryHome.h"
#include "tests/unit/authoring/Payloads.h"

namespace corvane::testing {
namespace {

constexpr const char* id = "0b5f7a0e-9c1d-4e2f-8a3b-abcdef012345";
const std::string tail = std::string("-") + id + ".corvane.json";

std::string fileName(const std::string& project, const std::string& test) {
  AgentTestSchema payload;
  payload.projectName = project;
  payload.requestId = id;
  payload.tests = {Payloads::emptyTest(test), Payloads::emptyTest("another")};
  return payload.fileName(FileTime());
}

std::string repeated(const std::string& text, std::size_t times) {
  std::string all;
  for (; times > 0; --times) all += text;
  return all;
}

TEST(FileNamePartTest, LettersMarksAndNumbersStay) {
  for (const std::string text : {"Shop-2_b", "ÄöéßĲǅʰ", "мойТест", "日本語テスト", "اختبار",
                                 "ทดสอบ", "e\u0301", "क्षि", "٣४", "Ⅻ", "½²", "𝔘𝟘", ""}) {
    EXPECT_EQ(fileNamePart(text), text);
  }
}

TEST(FileNamePartTest, EveryOtherCharacterBecomesOneDash) {
  EXPECT_EQ(fileNamePart("a b/c\\d.e:f"), "a-b-c-d-e-f");
  EXPECT_EQ(fileNamePart("../../etc"), "------etc");
  EXPECT_EQ(fileNamePart(std::string("a\0b\n\x7f", 5)), "a-b--");
  EXPECT_EQ(fileNamePart("✓ 😀+€—“”\u200b\u00ad"), "----------");
  EXPECT_EQ(fileNamePart("\u0378\ue000"), "--");
}

TEST(FileNamePartTest, ShorteningKeepsWholeCharacters) {
  EXPECT_EQ(shortenedTo("abc", 3), "abc");
  EXPECT_EQ(shortenedTo("abc", 2), "ab");
  EXPECT_EQ(shortenedTo("abc", 0), "");
  EXPECT_EQ(shortenedTo("", 0), "");
  EXPECT_EQ(shortenedTo("aé", 2), "a");
  EXPECT_EQ(shortenedTo("日本", 5), "日");
  EXPECT_EQ(shortenedTo("日本", 2), "");
  EXPECT_EQ(shortenedTo("ae\u0301b", 3), "a") << "a letter keeps its accent";
  EXPECT_EQ(shortenedTo("ae\u0301b", 4), "ae\u0301");
}

TEST(PayloadFileNameTest, NamesTheProjectTheFirstTestAndTheRequest) {
  EXPECT_EQ(fileName("My/Shop App", "Log in: ünïcode"), "My-Shop-App-Log-in--ünïcode" + tail);
}

TEST(PayloadFileNameTest, WithoutATestItSaysTest) {
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.requestId = id;
  EXPECT_EQ(payload.fileName(FileTime()), "Shop-test" + tail);
}

TEST(PayloadFileNameTest, WithoutARequestItCarriesTheMilliseconds) {
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.tests = {Payloads::emptyTest("T")};
  EXPECT_EQ(payload.fileName(FileTime(std::chrono::nanoseconds(1769860800'123'999'999))),
            "Shop-T-1769860800123.corvane.json");
}

TEST(PayloadFileNameTest, LiesInTheImportsFolder) {
  const TemporaryHome home;
  AgentTestSchema payload;
  payload.projectName = "Shop";
  payload.requestId = id;
  EXPECT_EQ(payload.fileURL(home.paths(), FileTime()),
            home.paths().agentImportsDirectory() / ("Shop-test" + tail));
}

TEST(PayloadFileNameTest, LongNamesShareTheRoom) {
  const std::string p = repeated("p", 1000);
  const std::string t = repeated("t", 1000);
  EXPECT_EQ(fileName(p, t), p.substr(0, 102) + "-" + t.substr(0, 102) + tail);
  EXPECT_EQ(fileName(p, t).size(), 255U);
}

TEST(PayloadFileNameTest, AShortNameLeavesItsRoomToTheOther) {
  const std::string longName = repeated("x", 1000);
  EXPECT_EQ(fileName("Shop", longName), "Shop-" + longName.substr(0, 200) + tail);
  EXPECT_EQ(fileName(longName, "T"), longName.substr(0, 203) + "-T" + tail);
  EXPECT_EQ(fileName(longName, ""), longName.substr(0, 204) + "-" + tail);
}

TEST(PayloadFileNameTest, ANameThatJustFitsIsWhole) {
  const std::string p = repeated("p", 100);
  const std::string t = repeated("t", 104);
  EXPECT_EQ(fileName(p, t), p + "-" + t + tail);
  EXPECT_EQ(fileName(p + "p", t), p + "p-" + t.substr(0, 103) + tail);
}

TEST(PayloadFileNameTest, IsNeverTooLongAndAlwaysText) {
  const std::vector<std::string> characters{"a", "é", "日", "𝔘", "e\u0301", "क्षि", "/"};
  for (const auto& one : characters) {
    for (const auto& other : characters) {
      for (const std::size_t length : {1U, 33U, 50U, 51U, 68U, 102U, 103U, 300U}) {
        const std::string name = fileName(repeated(one, length), repeated(other, 355U - length));
        EXPECT_LE(name.size(), 255U);
        EXPECT_TRUE(isValidUtf8(name));
        EXPECT_TRUE(name.ends_with(tail));
      }
    }
  }
}

/// One character may be longer than a whole name; it is then left out as a whole.
TEST(PayloadFileNameTest, OneEndlessCharacterIsLeftOut) {
  EXPECT_EQ(fileName("Shop", "e" + repeated("\u0301", 300)), "Shop-" + tail);
}

TEST(PayloadFileNameTest, TheFileSystemTakesTheLongest) {
  const TemporaryHome home;
  const auto file = home.path() / fileName(repeated("日", 300), repeated("é", 300));
  writeFileWhole(file, "{}");
  EXPECT_TRUE(fileExists(file));
}

}  // namespace
}  // namespace corvane::testing
