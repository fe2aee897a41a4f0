#include "CorvaneCore/text/Base64.h"

#include <gtest/gtest.h>

#include <string>

namespace corvane {
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

/// The inverse, worked out bit by bit.
std::string decoded(std::string_view text) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char character : text.substr(0, text.find('='))) {
    bits = bits << 6 | static_cast<unsigned>(digits.find(character));
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 0xFF);
  }
  return bytes;
}

TEST(Base64Test, CanBeReadBack) {
  std::string bytes;
  unsigned state = 1;
  for (int length = 0; length < 300; ++length) {
    const std::string text = base64(bytes);
    EXPECT_EQ(text.size() % 4, 0U);
    ASSERT_EQ(decoded(text), bytes);
    state = state * 1664525 + 1013904223;
    bytes += static_cast<char>(state >> 24);
  }
}

}  // namespace
}  // namespace corvane
