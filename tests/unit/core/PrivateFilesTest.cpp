#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/files/TemporaryFile.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Umask.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;

/// Writes home/folder/file and gives the permissions of both.
struct Written {
  Written(mode_t umask, Access access) {
    const TemporaryHome home;
    const Umask masked(umask);
    writeFileWhole(home.path() / "folder" / "file", "x", access);
    folder = TestFiles::mode(home.path() / "folder");
    file = TestFiles::mode(home.path() / "folder" / "file");
  }

  mode_t folder = 0;
  mode_t file = 0;
};

// Fails when a file or a folder is left to the umask.
TEST(PrivateFilesTest, AreForTheUserAloneWhateverTheUmask) {
  for (const mode_t umask : {0U, 022U, 077U}) {
    const Written written(umask, Access::userOnly);
    EXPECT_EQ(written.folder, 0700U) << umask;
    EXPECT_EQ(written.file, 0600U) << umask;
  }
}

// Fails when one of them is always private.
TEST(PrivateFilesTest, AreNotWhatTheUmaskDecidesAbout) {
  const Written open(0, Access::byUmask);
  EXPECT_EQ(open.folder, 0777U);
  EXPECT_EQ(open.file, 0666U);
  const Written usual(022, Access::byUmask);
  EXPECT_EQ(usual.folder, 0755U);
  EXPECT_EQ(usual.file, 0644U);
  const Written closed(077, Access::byUmask);
  EXPECT_EQ(closed.folder, 0700U);
  EXPECT_EQ(closed.file, 0600U);
}

// Fails when one of the two ways of opening forgets who it is for.
TEST(PrivateFilesTest, ArePrivateBeforeTheyAreWhole) {
  const Umask none(0);
  for (const auto kind : {TemporaryFile::Kind::nameless, TemporaryFile::Kind::named}) {
    for (const auto& [access, mode] :
         {std::pair(Access::userOnly, 0600U), std::pair(Access::byUmask, 0666U)}) {
      const TemporaryHome home;
      TemporaryFile file(home.path() / "file", kind, access);
      for (const auto& entry : fs::directory_iterator(home.path())) {
        EXPECT_EQ(TestFiles::mode(entry.path()), mode);
      }
      ASSERT_TRUE(file.moveIntoPlace());
      EXPECT_EQ(TestFiles::mode(home.path() / "file"), mode);
    }
  }
}

TEST(PrivateFilesTest, TakeThePlaceOfOpenOnes) {
  const TemporaryHome home;
  TestFiles::write(home.path() / "file", "old");
  TestFiles::setMode(home.path() / "file", 0666);
  writeFileWhole(home.path() / "file", "new");
  EXPECT_EQ(TestFiles::mode(home.path() / "file"), 0600U);
}

// Fails when only the last folder is private.
TEST(PrivateFoldersTest, AreMadeWithTheirParents) {
  const TemporaryHome home;
  const Umask none(0);
  ensureDirectoryExists(home.path() / "a" / "b");
  EXPECT_EQ(TestFiles::mode(home.path() / "a"), 0700U);
  EXPECT_EQ(TestFiles::mode(home.path() / "a" / "b"), 0700U);
}

// Fails when what lies in an open folder, or below it, is passed over, or when more is taken away
// than what others may do.
TEST(PrivateFoldersTest, CloseWhatWasOpenBefore) {
  const TemporaryHome home;
  const fs::path folder = home.path() / "folder";
  TestFiles::write(folder / "request", "x");
  TestFiles::write(folder / "program", "x");
  TestFiles::write(folder / "inner" / "picture", "x");
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  TestFiles::setMode(folder / "request", 0644);
  TestFiles::setMode(folder / "program", 0755);
  TestFiles::setMode(folder / "inner" / "picture", 0666);
  TestFiles::setMode(folder / "fifo", 0622);
  TestFiles::setMode(folder / "inner", 02575);
  TestFiles::setMode(folder, 0701);
  ensureDirectoryExists(folder);
  EXPECT_EQ(TestFiles::mode(folder), 0700U);
  EXPECT_EQ(TestFiles::mode(folder / "request"), 0600U);
  EXPECT_EQ(TestFiles::mode(folder / "program"), 0700U);
  EXPECT_EQ(TestFiles::mode(folder / "fifo"), 0600U);
  EXPECT_EQ(TestFiles::mode(folder / "inner"), 02500U);
  EXPECT_EQ(TestFiles::mode(folder / "inner" / "picture"), 0600U);
}

// Fails when a folder is opened to its owner, or a file in a folder's place is changed.
TEST(PrivateFoldersTest, ChangeNothingElse) {
  const TemporaryHome home;
  fs::create_directory(home.path() / "closed");
  TestFiles::setMode(home.path() / "closed", 0500);
  TestFiles::write(home.path() / "file", "x");
  TestFiles::setMode(home.path() / "file", 0644);
  TestFiles::setMode(home.path(), 0755);
  ensureDirectoryExists(home.path() / "closed");
  ensureDirectoryExists(home.path() / "file");
  EXPECT_EQ(TestFiles::mode(home.path() / "closed"), 0500U);
  EXPECT_EQ(TestFiles::mode(home.path() / "file"), 0644U);
  EXPECT_EQ(TestFiles::mode(home.path()), 0755U);
}

// Fails when a link is followed, be it the folder itself or in one.
TEST(PrivateFoldersTest, AreNotReachedThroughLinks) {
  const TemporaryHome home;
  const fs::path outside = home.path() / "outside";
  TestFiles::write(outside / "file", "x");
  TestFiles::setMode(outside / "file", 0644);
  TestFiles::setMode(outside, 0755);
  fs::create_directory_symlink(outside, home.path() / "link");
  ensureDirectoryExists(home.path() / "link");
  fs::create_directory(home.path() / "folder");
  TestFiles::setMode(home.path() / "folder", 0755);
  fs::create_directory_symlink(outside, home.path() / "folder" / "inner link");
  ensureDirectoryExists(home.path() / "folder");
  EXPECT_EQ(TestFiles::mode(home.path() / "folder"), 0700U);
  EXPECT_EQ(TestFiles::mode(outside), 0755U);
  EXPECT_EQ(TestFiles::mode(outside / "file"), 0644U);
}

// Fails when it is not asked whose it is.
TEST(PrivateFoldersTest, OfAnotherUserStayAsTheyAre) {
  if (::geteuid() != 0) GTEST_SKIP() << "only the superuser may change what is another's";
  constexpr uid_t nobody = 65534;
  const TemporaryHome home;
  const fs::path folder = home.path() / "folder";
  TestFiles::write(folder / "file", "x");
  ASSERT_EQ(::chown(folder.c_str(), nobody, nobody), 0);
  TestFiles::setMode(folder, 0755);
  TestFiles::setMode(folder / "file", 0644);
  ensureDirectoryExists(folder);
  EXPECT_EQ(TestFiles::mode(folder), 0755U);
  EXPECT_EQ(TestFiles::mode(folder / "file"), 0644U);
}

}  // namespace
}  // namespace corvane::testing
