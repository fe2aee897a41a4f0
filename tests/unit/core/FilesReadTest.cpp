#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include "CorvaneCore/files/Files.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

void expectUnreadable(const fs::path& path, std::string_view reason) {
  EXPECT_EQ(errorText<FileError>([&] { (void)readFile(path); }),
            "could not read " + path.string() + ": " + std::string(reason));
}

TEST(FilesReadTest, MissingFilesAndBrokenLinksAreErrors) {
  const TemporaryHome home;
  expectUnreadable(home.path() / "missing", "No such file or directory");
  expectUnreadable(home.path() / "missing" / "file", "No such file or directory");
  writeFileWhole(home.path() / "file", "");
  expectUnreadable(home.path() / "file" / "deeper", "Not a directory");
  fs::create_symlink("nowhere", home.path() / "dangling");
  expectUnreadable(home.path() / "dangling", "No such file or directory");
  fs::create_symlink("loop", home.path() / "loop");
  expectUnreadable(home.path() / "loop", "Too many levels of symbolic links");
}

TEST(FilesReadTest, FollowsLinks) {
  const TemporaryHome home;
  writeFileWhole(home.path() / "file", "contents");
  fs::create_symlink("file", home.path() / "link");
  EXPECT_EQ(readFile(home.path() / "link"), "contents");
}

TEST(FilesReadTest, OtherKindsOfFileFailAtOnce) {
  const TemporaryHome home;
  expectUnreadable(home.path(), "Is a directory");
  const fs::path fifo = home.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  expectUnreadable(fifo, "Invalid argument");
  expectUnreadable("/dev/zero", "Invalid argument");
  expectUnreadable("/dev/null", "Invalid argument");

  const fs::path socketFile = home.path() / "socket";
  const FileDescriptor socket(::socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(socketFile.native().size(), sizeof address.sun_path);
  socketFile.native().copy(address.sun_path, sizeof address.sun_path - 1);
  ASSERT_EQ(::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_THROW((void)readFile(socketFile), FileError);
}

TEST(FilesReadTest, ReadsUpToTheLimit) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  writeFileWhole(file, "12345");
  EXPECT_EQ(readFile(file, 6), "12345");
  EXPECT_EQ(readFile(file, 5), "12345");
  EXPECT_EQ(errorText<FileError>([&] { (void)readFile(file, 4); }),
            "could not read " + file.string() + ": File too large");
  EXPECT_THROW((void)readFile(file, 0), FileError);
  writeFileWhole(file, "");
  EXPECT_EQ(readFile(file, 0), "");
}

TEST(FilesReadTest, AHugeFileIsRefusedUnread) {
  const TemporaryHome home;
  const fs::path file = home.path() / "huge";
  writeFileWhole(file, "");
  fs::resize_file(file, std::uintmax_t{1} << 40);
  expectUnreadable(file, "File too large");
  fs::resize_file(file, largestFile + 1);
  expectUnreadable(file, "File too large");
}

#ifdef __linux__
TEST(FilesReadTest, ReadsFilesThatDoNotKnowTheirSize) {
  ASSERT_EQ(fs::file_size("/proc/self/maps"), 0U);
  EXPECT_GT(readFile("/proc/self/maps").size(), 4096U);
  EXPECT_THROW((void)readFile("/proc/self/maps", 100), FileError);
}
#endif

TEST(FilesReadTest, StampsTellVersionsApart) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  EXPECT_EQ(readStamp(file), std::nullopt);
  writeFileWhole(file, "12345");
  const auto stamp = readStamp(file);
  ASSERT_TRUE(stamp);
  EXPECT_EQ(stamp->size, 5U);
  EXPECT_EQ(readStamp(file), stamp);

  const timespec times[2]{{1'700'000'000, 0}, {1'700'000'000, 123'456'000}};
  ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
  EXPECT_EQ(readStamp(file)->modifiedAt,
            FileTime(std::chrono::seconds(1'700'000'000) + std::chrono::microseconds(123'456)));
  EXPECT_NE(readStamp(file), stamp);

  fs::create_symlink("file", home.path() / "link");
  EXPECT_EQ(readStamp(home.path() / "link"), readStamp(file));
  fs::create_symlink("nowhere", home.path() / "dangling");
  EXPECT_EQ(readStamp(home.path() / "dangling"), std::nullopt);
}

TEST(FilesReadTest, ExistenceFollowsLinks) {
  const TemporaryHome home;
  EXPECT_TRUE(fileExists(home.path()));
  EXPECT_FALSE(fileExists(home.path() / "file"));
  writeFileWhole(home.path() / "file", "");
  EXPECT_TRUE(fileExists(home.path() / "file"));
  EXPECT_FALSE(fileExists(home.path() / "file" / "deeper"));
  fs::create_symlink("nowhere", home.path() / "dangling");
  EXPECT_FALSE(fileExists(home.path() / "dangling"));
}

TEST(FilesReadTest, ListsVisibleEntriesByName) {
  const TemporaryHome home;
  EXPECT_EQ(listVisible(home.path()), std::vector<fs::path>());
  for (const char* name : {"b", ".hidden", "a.json", "B", "..odd", "a", "folder/inside", "c."}) {
    writeFileWhole(home.path() / name, "");
  }
  const std::vector<fs::path> expected{home.path() / "B",      home.path() / "a",
                                       home.path() / "a.json", home.path() / "b",
                                       home.path() / "c.",     home.path() / "folder"};
  EXPECT_EQ(listVisible(home.path()), expected);
  EXPECT_EQ(listVisible(home.path() / "missing"), std::vector<fs::path>());
  EXPECT_EQ(listVisible(home.path() / "a"), std::vector<fs::path>());
}

}  // namespace
}  // namespace corvane::testing
