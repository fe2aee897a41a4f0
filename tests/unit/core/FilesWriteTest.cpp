#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "tests/support/ErrorText.h"
#include "tests/support/TemporaryHome.h"

namespace corvane::testing {
namespace {

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

TEST(FilesWriteTest, AnUnwritableFolderStaysAsItWas) {
  if (::geteuid() == 0) GTEST_SKIP() << "the superuser may write everywhere";
  const TemporaryHome home;
  const fs::path file = home.path() / "locked" / "file";
  writeFileWhole(file, "kept");
  fs::permissions(file.parent_path(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(writeError(file), "could not write " + file.string() + ": Permission denied");
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

}  // namespace
}  // namespace corvane::testing
