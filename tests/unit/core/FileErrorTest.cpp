#include "CorvaneCore/files/Files.h"

#include <gtest/gtest.h>

namespace corvane::testing {
namespace {

TEST(FileErrorTest, SaysWhatFailedWhereAndWhy) {
  const FileError error("write", "/home/me/x.json",
                        std::make_error_code(std::errc::no_space_on_device));
  EXPECT_STREQ(error.what(), "could not write /home/me/x.json: No space left on device");
  EXPECT_EQ(error.code(), std::errc::no_space_on_device);
}

TEST(FileErrorTest, IsOneLineOfValidText) {
  const auto missing = std::make_error_code(std::errc::no_such_file_or_directory);
  EXPECT_STREQ(FileError("read", "/a\xFF/b\nc", missing).what(),
               "could not read /a\xEF\xBF\xBD/b\\nc: No such file or directory");
}

TEST(FileErrorTest, DisplayPathIsValidText) {
  EXPECT_EQ(displayPath("/plain/caf\xC3\xA9"), "/plain/caf\xC3\xA9");
  EXPECT_EQ(displayPath("/a\xFF"), "/a\xEF\xBF\xBD");
}

}  // namespace
}  // namespace corvane::testing
