#include "CorvaneCore/text/Base64.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane::testing {
namespace {

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
       {"Zg", "Zg=", "Z", "=", "====", "Zg=g", "Zg==Zg==", "Zm9v!", "Zm-v", "Zm9v="}) {
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

}  // namespace
}  // namespace corvane::testing
