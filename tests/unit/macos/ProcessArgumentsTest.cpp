#include "tests/support/ProcessArguments.h"

#include <gtest/gtest.h>

#include <bit>
#include <string>
#include <string_view>

namespace corvane::testing {
namespace {

using namespace std::string_view_literals;

// As the system lays them out for "open -a 'Corner Shop'", with a variable behind.
constexpr auto recorded = "\3\0\0\0/usr/bin/open\0\0\0open\0-a\0Corner Shop\0HOME=/Users/me\0\0"sv;

class ProcessArgumentsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (std::endian::native != std::endian::little) GTEST_SKIP() << "macOS is little-endian";
  }
};

// Fails when the program's path counts as an argument, or what is in the environment.
TEST_F(ProcessArgumentsTest, AreJoinedWithBlanks) {
  EXPECT_EQ(joinedArguments(recorded), "open -a Corner Shop");
}

TEST_F(ProcessArgumentsTest, AnEmptyOneLeavesItsBlank) {
  EXPECT_EQ(joinedArguments("\3\0\0\0/bin/a\0\0a\0\0b\0X=1\0"sv), "a  b");
}

// Fails when a process that is just ending, which tells only a part, is read beyond its end.
TEST_F(ProcessArgumentsTest, CutBytesGiveWhatThereIs) {
  const std::string whole = "open -a Corner Shop";
  for (std::size_t length = 0; length < recorded.size(); ++length) {
    const std::string bytes(recorded.substr(0, length));
    EXPECT_TRUE(whole.starts_with(joinedArguments(bytes))) << length;
  }
}

}  // namespace
}  // namespace corvane::testing
