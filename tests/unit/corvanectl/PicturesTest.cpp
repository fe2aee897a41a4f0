#include <gtest/gtest.h>

#include "CorvaneCore/files/Files.h"
#include "TemporaryDirectory.h"
#include "corvanectl/pictures/Base64.h"
#include "corvanectl/pictures/PictureOutput.h"

namespace corvane {
namespace {

TEST(Base64, DecodesEveryLength) {
  EXPECT_EQ(decodeBase64(""), "");
  EXPECT_EQ(decodeBase64("Zg=="), "f");
  EXPECT_EQ(decodeBase64("Zm8="), "fo");
  EXPECT_EQ(decodeBase64("Zm9v"), "foo");
  EXPECT_EQ(decodeBase64("Zm9v\nYmFy\r\n"), "foobar");
  EXPECT_EQ(decodeBase64("+/+/"), "\xFB\xFF\xBF");
}

TEST(Base64, RefusesOtherText) {
  for (const char* text :
       {"Zg", "Zg=", "Z", "=", "====", "Zg=g", "Zg==Zg==", "Zm9v!", "Zm-v", "Zm9v="}) {
    EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
  }
}

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
