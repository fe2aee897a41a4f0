#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <limits>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "tests/support/ErrorText.h"
#include "tests/support/OrdinaryUser.h"
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

// Fails when a time that is out of reach is cut to one that is not, or runs over.
TEST(FilesReadTest, AStampHasNoTimeOutOfReach) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  writeFileWhole(file, "12345");
  const auto modifiedAt = [&file](std::int64_t seconds) {
    const timespec times[2]{{seconds, 999'999'999}, {seconds, 999'999'999}};
    if (::utimensat(AT_FDCWD, file.c_str(), times, 0) != 0) return std::string("(not set)");
    struct stat status{};
    ::stat(file.c_str(), &status);
    // File systems cut what is out of their own reach.
    if (status.st_mtime != seconds) return std::string("(not set)");
    const auto stamp = readStamp(file);
    if (!stamp || stamp->size != 5) return std::string("(no stamp)");
    if (!stamp->modifiedAt) return std::string("(no time)");
    return std::to_string(stamp->modifiedAt->time_since_epoch().count());
  };
  EXPECT_EQ(modifiedAt(1'700'000'000), "1700000000999999999");
  for (const auto& [seconds, expected] :
       {std::pair<std::int64_t, std::string>{9'200'000'000, "9200000000999999999"},
        {9'200'000'001, "(no time)"},
        {10'413'792'000, "(no time)"},
        {std::numeric_limits<std::int64_t>::max(), "(no time)"},
        {-4'000'000'000, "-3999999999000000001"},
        {-4'000'000'001, "(no time)"},
        {std::numeric_limits<std::int64_t>::min(), "(no time)"}}) {
    const std::string time = modifiedAt(seconds);
    if (time != "(not set)") {
      EXPECT_EQ(time, expected) << seconds;
    }
  }
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

#ifdef __APPLE__
TEST(FilesReadTest, ListsNoEntryWithTheHiddenFlag) {
  const TemporaryHome home;
  TestFiles::write(home.path() / "hidden", "");
  TestFiles::write(home.path() / "seen", "");
  ASSERT_EQ(::chflags((home.path() / "hidden").c_str(), UF_HIDDEN), 0);
  EXPECT_EQ(listVisible(home.path()), std::vector<fs::path>{home.path() / "seen"});
}
#endif

namespace fs = std::filesystem;

std::string writeError(const fs::path& path, std::string_view contents = "contents") {
  return errorText<FileError>([&] { writeFileWhole(path, contents); });
}

TEST(FilesWriteTest, WritesExactlyTheContents) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  const std::string large(std::size_t{2} << 20, 'x');
  for (const std::string& contents : {std::string(), std::string("{}"), everyByte, large}) {
    writeFileWhole(file, contents);
    EXPECT_TRUE(readFile(file) == contents);
  }
  EXPECT_EQ(home.entries(), std::vector<std::string>{"file"});
}

TEST(FilesWriteTest, CreatesMissingFolders) {
  const TemporaryHome home;
  writeFileWhole(home.path() / "a" / "b" / "file", "x");
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"a", "a/b", "a/b/file"}));
}

TEST(FilesWriteTest, TakesANameInTheCurrentFolder) {
  const TemporaryHome home;
  const fs::path before = fs::current_path();
  fs::current_path(home.path());
  writeFileWhole("file", "x");
  fs::current_path(before);
  EXPECT_EQ(home.entries(), std::vector<std::string>{"file"});
}

TEST(FilesWriteTest, ReplacesALinkAndNotWhatItPointsTo) {
  const TemporaryHome home;
  writeFileWhole(home.path() / "real", "real");
  fs::create_symlink("real", home.path() / "link");
  writeFileWhole(home.path() / "link", "new");
  EXPECT_EQ(readFile(home.path() / "real"), "real");
  EXPECT_EQ(readFile(home.path() / "link"), "new");
}

TEST(FilesWriteTest, TakesTheLongestNameTheFileSystemTakes) {
  const TemporaryHome home;
  const fs::path longest = home.path() / std::string(255, 'n');
  writeFileWhole(longest, "x");
  EXPECT_EQ(readFile(longest), "x");
  const fs::path tooLong = home.path() / std::string(256, 'n');
  EXPECT_EQ(writeError(tooLong), "could not write " + tooLong.string() + ": File name too long");
  EXPECT_EQ(home.entries(), std::vector<std::string>{longest.filename().string()});
}

TEST(FilesWriteTest, AFolderInTheFilesPlaceStaysAsItWas) {
  const TemporaryHome home;
  const fs::path folder = home.path() / "folder";
  writeFileWhole(folder / "inside", "kept");
  EXPECT_EQ(writeError(folder), "could not write " + folder.string() + ": Is a directory");
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"folder", "folder/inside"}));
}

TEST(FilesWriteTest, AFileInAParentsPlaceStaysAsItWas) {
  const TemporaryHome home;
  const fs::path parent = home.path() / "parent";
  writeFileWhole(parent, "kept");
  EXPECT_EQ(writeError(parent / "file"),
            "could not write " + (parent / "file").string() + ": Not a directory");
  EXPECT_EQ(writeError(parent / "deeper" / "file"),
            "could not write " + (parent / "deeper" / "file").string() + ": Not a directory");
  EXPECT_EQ(home.entries(), std::vector<std::string>{"parent"});
  EXPECT_EQ(readFile(parent), "kept");
}

void expectNoPlaceFor(const fs::path& path, std::string_view reason) {
  EXPECT_EQ(errorText<FileError>([&] { ensureWritable(path); }),
            "could not write " + path.string() + ": " + std::string(reason));
}

TEST(FilesWriteTest, AnUnwritableFolderStaysAsItWas) {
  const TemporaryHome home;
  const OrdinaryUser user(home.path());
  if (!user.isOrdinary()) GTEST_SKIP() << "the superuser may write everywhere";
  const fs::path file = home.path() / "locked" / "file";
  writeFileWhole(file, "kept");
  fs::permissions(file.parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(writeError(file), "could not write " + file.string() + ": Permission denied");
  expectNoPlaceFor(file, "Permission denied");
  fs::permissions(file.parent_path(), fs::perms::owner_all);
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"locked", "locked/file"}));
  EXPECT_EQ(readFile(file), "kept");
}

/// Runs `act` in a child process that may not make a file larger than `bytes`, as on a full disk;
/// whether it returned true.
template <class Act>
bool holdsWithFileSizeLimit(rlim_t bytes, Act act) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    const bool limited = ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
    ::_exit(limited && act() ? 0 : 1);
  }
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

TEST(FilesWriteTest, AWriteThatRunsOutOfRoomLeavesTheOldFileAndNothingElse) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  const std::string expected = "could not write " + file.string() + ": File too large";
  const auto failsAsExpected = [&] {
    return writeError(file, std::string(10'000, 'x')) == expected;
  };

  EXPECT_TRUE(holdsWithFileSizeLimit(4096, failsAsExpected));
  EXPECT_EQ(home.entries(), std::vector<std::string>());

  writeFileWhole(file, "old");
  EXPECT_TRUE(holdsWithFileSizeLimit(4096, failsAsExpected));
  EXPECT_TRUE(holdsWithFileSizeLimit(0, failsAsExpected));
  EXPECT_EQ(home.entries(), std::vector<std::string>{"file"});
  EXPECT_EQ(readFile(file), "old");
}

TEST(FilesWriteTest, AReaderSeesOneVersionOrTheOtherWhole) {
  const TemporaryHome home;
  const fs::path file = home.path() / "file";
  const std::string shorter(1'000, 'a');
  const std::string longer(100'000, 'b');
  writeFileWhole(file, shorter);
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (int round = 0; round < 200; ++round) {
      writeFileWhole(file, round % 2 == 0 ? longer : shorter);
    }
    done = true;
  });
  do {
    const std::string seen = readFile(file);
    EXPECT_TRUE(seen == shorter || seen == longer) << seen.size() << " bytes";
    EXPECT_EQ(listVisible(home.path()), std::vector<fs::path>{file});
  } while (!done);
  writer.join();
}

TEST(FilesWriteTest, APlaceThatCanBeWrittenIsLeftAsItIs) {
  const TemporaryHome home;
  ensureWritable(home.path() / "new" / "file");
  EXPECT_EQ(home.entries(), std::vector<std::string>{"new"});
  writeFileWhole(home.path() / "file", "contents");
  ensureWritable(home.path() / "file");
  EXPECT_EQ(readFile(home.path() / "file"), "contents");
}

// Fails when it is only at the end of a long run that there turns out to be no place for its file.
TEST(FilesWriteTest, APlaceThatCannotBeWrittenIsToldBefore) {
  const TemporaryHome home;
  writeFileWhole(home.path() / "file", "");
  expectNoPlaceFor(home.path(), "Is a directory");
  expectNoPlaceFor(home.path() / "file" / "below", "Not a directory");
  expectNoPlaceFor(home.path() / std::string(300, 'n'), "File name too long");
  expectNoPlaceFor("/dev/null", "Invalid argument");
}

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
