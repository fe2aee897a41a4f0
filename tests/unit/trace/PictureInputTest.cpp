#include "corvane_mcp/trace/PictureInput.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "CorvaneCore/files/Files.h"
#include "corvane_mcp/trace/Picture.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {
namespace {

std::string readAll(PictureInput input) {
  std::string read;
  while (true) {
    const auto ready = input.peek();
    if (ready.empty()) return read;
    // In two parts, to see that the rest stays ready.
    const std::size_t part = (ready.size() + 1) / 2;
    read.append(reinterpret_cast<const char*>(ready.data()), part);
    input.consume(part);
  }
}

class PictureInputTest : public ::testing::Test {
 protected:
  [[nodiscard]] std::string refusal(std::string_view name) const {
    return errorText<PictureError>([&] { (void)PictureInput::open(folder, name); });
  }

  TemporaryHome home;
  std::filesystem::path folder = home.path() / "session";
};

TEST_F(PictureInputTest, ReadsAFileFromFrontToBack) {
  std::string contents;
  for (int i = 0; i < 100'000; ++i) contents += std::to_string(i);
  writeFileWhole(folder / "a.png", contents);
  EXPECT_EQ(readAll(PictureInput::open(folder, "a.png")), contents);
}

// Fails when a file is read for as long as it grows.
TEST_F(PictureInputTest, AFileThatGrowsEndsSomeTime) {
  const auto file = folder / "growing.png";
  writeFileWhole(file, "x");
  auto input = PictureInput::open(folder, "growing.png");
  constexpr std::size_t largest = std::size_t{512} << 20;
  ASSERT_EQ(::truncate(file.c_str(), off_t{largest} + 100), 0);
  std::size_t read = 0;
  for (auto ready = input.peek(); !ready.empty(); ready = input.peek()) {
    read += ready.size();
    input.consume(ready.size());
  }
  EXPECT_EQ(read, largest);
}

TEST_F(PictureInputTest, ReadsBytesInMemory) {
  const std::vector<std::uint8_t> bytes{'a', 'b', 'c'};
  EXPECT_EQ(readAll(PictureInput(bytes)), "abc");
  EXPECT_EQ(readAll(PictureInput(std::span<const std::uint8_t>())), "");
}

TEST_F(PictureInputTest, OpensUnusualPlainNames) {
  for (const std::string name :
       {"a..b", ".hidden", "ß å.png", "back\\slash", "...", "line\nbreak"}) {
    writeFileWhole(folder / name, name);
    EXPECT_EQ(readAll(PictureInput::open(folder, name)), name);
  }
}

TEST_F(PictureInputTest, RefusesWhateverIsNoPlainName) {
  writeFileWhole(home.path() / "outside.png", "x");
  writeFileWhole(folder / "inner" / "a.png", "x");
  using namespace std::string_view_literals;
  for (const std::string_view name : {""sv, "."sv, ".."sv, "../outside.png"sv, "inner/a.png"sv,
                                      "/etc/passwd"sv, "./a.png"sv, "a.png/"sv, "a\0.png"sv}) {
    EXPECT_EQ(refusal(name), "it is not a plain file name") << name;
  }
}

TEST_F(PictureInputTest, RefusesLinksOutAndIn) {
  writeFileWhole(home.path() / "outside.png", "x");
  writeFileWhole(folder / "inside.png", "x");
  std::filesystem::create_symlink(home.path() / "outside.png", folder / "out.png");
  std::filesystem::create_symlink("inside.png", folder / "in.png");
  EXPECT_EQ(refusal("out.png"), "it is a link");
  EXPECT_EQ(refusal("in.png"), "it is a link");
}

TEST_F(PictureInputTest, RefusesWhateverIsNoRegularFile) {
  std::filesystem::create_directories(folder / "folder.png");
  ASSERT_EQ(::mkfifo((folder / "fifo.png").c_str(), 0600), 0);
  EXPECT_EQ(refusal("folder.png"), "it is a folder");
  EXPECT_EQ(refusal("fifo.png"), "it is not a regular file");
}

TEST_F(PictureInputTest, RefusesEmptyMissingAndHugeFiles) {
  writeFileWhole(folder / "empty.png", "");
  EXPECT_EQ(refusal("empty.png"), "the file is empty");
  EXPECT_EQ(refusal("missing.png"), "No such file or directory");
  writeFileWhole(folder / "huge.png", "x");
  ASSERT_EQ(::truncate((folder / "huge.png").c_str(), off_t{600} << 20), 0);
  EXPECT_EQ(refusal("huge.png"), "the file is too large");
  ASSERT_EQ(::truncate((folder / "huge.png").c_str(), off_t{512} << 20), 0);
  EXPECT_NO_THROW((void)PictureInput::open(folder, "huge.png"));
  ASSERT_EQ(::truncate((folder / "huge.png").c_str(), (off_t{512} << 20) + 1), 0);
  EXPECT_EQ(refusal("huge.png"), "the file is too large");
}

}  // namespace
}  // namespace corvane::testing
