#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "TemporaryDirectory.h"
#include "corvanectl/pictures/PictureOutput.h"

namespace corvane {
namespace {

TEST(PictureOutput, NamesKindAndSizeWithoutAFolder) {
  PictureOutput pictures(std::nullopt, "get_result");
  EXPECT_EQ(pictures.take({"Zm9vYmFy", "image/jpeg"}), "[image/jpeg, 6 bytes]");
  EXPECT_EQ(pictures.take({"???", "image/jpeg"}),
            "[image/jpeg, not readable: its data is no base64]");
}

TEST(PictureOutput, SavesPicturesUnderTheirNumbers) {
  const TemporaryDirectory directory;
  const auto folder = directory.path() / "new" / "shots";
  PictureOutput pictures(folder, "get_result");
  EXPECT_EQ(pictures.take({"Zm9v", "image/jpeg"}), folder / "get_result-1.jpg");
  EXPECT_EQ(pictures.take({"YmFy", "image/png"}), folder / "get_result-2.png");
  EXPECT_EQ(readFile(folder / "get_result-1.jpg"), "foo");
  EXPECT_EQ(readFile(folder / "get_result-2.png"), "bar");
}

TEST(PictureOutput, OverwritesNothing) {
  const TemporaryDirectory directory;
  writeFileWhole(directory.path() / "x-1.jpg", "old");
  EXPECT_EQ(PictureOutput(directory.path(), "x").take({"Zm9v", "image/jpeg"}),
            directory.path() / "x-2.jpg");
  EXPECT_EQ(readFile(directory.path() / "x-1.jpg"), "old");
}

TEST(PictureOutput, StaysInsideItsFolder) {
  const TemporaryDirectory directory;
  EXPECT_EQ(PictureOutput(directory.path(), "../../a.b/c").take({"Zm9v", "image/jpeg"}),
            directory.path() / "------a-b-c-1.jpg");
}

TEST(PictureOutput, ReportsAFolderThatCannotBe) {
  const TemporaryDirectory directory;
  writeFileWhole(directory.path() / "file", "");
  PictureOutput pictures(directory.path() / "file", "x");
  EXPECT_THROW((void)pictures.take({"Zm9v", "image/jpeg"}), FileError);
}

}  // namespace
}  // namespace corvane
