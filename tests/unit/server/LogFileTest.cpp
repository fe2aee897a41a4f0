#include "corvane_mcp/server/LogFile.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#include "CorvaneCore/files/Files.h"
#include "tests/support/Patience.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

/// The largest file that is kept.
constexpr std::size_t keptSize = 1'048'576;

class LogFileTest : public testing::Test {
 protected:
  TemporaryHome home;
  fs::path file = home.path() / "mcp.log";
  fs::path old = home.path() / "mcp.1.log";
};

TEST_F(LogFileTest, CreatesTheFileAndAppendsToIt) {
  appendToLogFile(file, {"one\n"});
  appendToLogFile(file, {"two\n", "three\n"});
  appendToLogFile(file, {});
  EXPECT_EQ(TestFiles::read(file), "one\ntwo\nthree\n");
  EXPECT_EQ(home.entries(), std::vector<std::string>{"mcp.log"});
}

TEST_F(LogFileTest, KeepsAFileOfExactlyOneMebibyte) {
  TestFiles::write(file, std::string(keptSize, 'x'));
  appendToLogFile(file, {"new\n"});
  EXPECT_EQ(TestFiles::read(file), std::string(keptSize, 'x') + "new\n");
  EXPECT_FALSE(fs::exists(old));
}

TEST_F(LogFileTest, RotatesAFileThatIsOneByteLarger) {
  TestFiles::write(file, std::string(keptSize + 1, 'x'));
  appendToLogFile(file, {"new\n"});
  EXPECT_EQ(TestFiles::read(file), "new\n");
  EXPECT_EQ(TestFiles::read(old), std::string(keptSize + 1, 'x'));
}

TEST_F(LogFileTest, KeepsOneOldGeneration) {
  TestFiles::write(old, "an older generation");
  TestFiles::write(file, std::string(keptSize + 1, 'x'));
  appendToLogFile(file, {"new\n"});
  EXPECT_EQ(TestFiles::read(old), std::string(keptSize + 1, 'x'));
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"mcp.1.log", "mcp.log"}));
}

TEST_F(LogFileTest, RotatesBetweenTheLinesOfOneBatch) {
  TestFiles::write(file, std::string(keptSize - 3, 'x'));
  // The first line fills the file to the last byte that is kept, the second one grows it past
  // that, and the third one finds it too large.
  appendToLogFile(file, {"12\n", "3\n", "4\n", "5\n"});
  EXPECT_EQ(TestFiles::read(old), std::string(keptSize - 3, 'x') + "12\n3\n");
  EXPECT_EQ(TestFiles::read(file), "4\n5\n");
}

TEST_F(LogFileTest, RotatesAsIfEveryLineWereAppendedAlone) {
  std::mt19937 random(7);
  std::string expected;
  std::string expectedOld;
  for (int batch = 0; batch < 60; ++batch) {
    std::vector<std::string> lines;
    for (auto i = random() % 12; i > 0; --i) {
      lines.push_back(std::string(random() % 20'000, static_cast<char>('a' + random() % 26)) +
                      "\n");
      if (expected.size() >= keptSize + 1) expectedOld = std::exchange(expected, {});
      expected += lines.back();
    }
    appendToLogFile(file, lines);
  }
  ASSERT_FALSE(expectedOld.empty());
  EXPECT_TRUE(TestFiles::read(file) == expected);
  EXPECT_TRUE(TestFiles::read(old) == expectedOld);
}

TEST_F(LogFileTest, AppendsToAFileThatCannotBeMovedAway) {
  TestFiles::write(old / "in the way", "");
  TestFiles::write(file, std::string(keptSize + 1, 'x'));
  appendToLogFile(file, {"new\n", "newer\n"});
  EXPECT_EQ(TestFiles::read(file), std::string(keptSize + 1, 'x') + "new\nnewer\n");
}

TEST_F(LogFileTest, BeginsAFreshFileWhenSomebodyHasMovedItAway) {
  appendToLogFile(file, {"one\n"});
  fs::rename(file, home.path() / "kept");
  appendToLogFile(file, {"two\n"});
  EXPECT_EQ(TestFiles::read(file), "two\n");
  fs::remove(file);
  appendToLogFile(file, {"three\n"});
  EXPECT_EQ(TestFiles::read(file), "three\n");
}

// Another server rotates the file between this one's opening and locking it. What was opened is
// then the old generation, which must be left alone.
TEST_F(LogFileTest, DoesNotMindThatTheFileIsRotatedWhileItWaitsForItsTurn) {
  const std::string oldText(keptSize + 1, 'x');
  TestFiles::write(file, oldText);
  FileDescriptor lock(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(::flock(lock.get(), LOCK_EX), 0);
  std::thread appending([this] { appendToLogFile(file, {"new\n"}); });
  const auto openings = [this] {
    const auto descriptors = ProcessFacts::descriptors(::getpid());
    return std::count_if(descriptors.begin(), descriptors.end(), [this](const auto& descriptor) {
      return descriptor.ends_with(file.string());
    });
  };
  waitUntil("the file is open twice", [&] { return openings() == 2; });
  fs::rename(file, old);
  TestFiles::write(file, "first\n");
  lock.close();
  appending.join();
  EXPECT_TRUE(TestFiles::read(old) == oldText);
  EXPECT_EQ(TestFiles::read(file), "first\nnew\n");
}

TEST_F(LogFileTest, PassesOverWhatCannotBeWritten) {
  appendToLogFile(home.path() / "missing" / "mcp.log", {"x\n"});
  fs::create_directory(file);
  appendToLogFile(file, {"x\n"});
  const fs::path fifo = home.path() / "fifo.log";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  // Nobody reads the FIFO; opening it must not wait for somebody.
  appendToLogFile(fifo, {"x\n"});
  appendToLogFile("/dev/full", {"x\n"});
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"fifo.log", "mcp.log"}));
}

/// Starts processes that each append `count` lines, "NAME NUMBER filling", a few at a time, and
/// waits for them.
void appendFromProcesses(const fs::path& file, int processes, int count, std::size_t filling) {
  std::vector<pid_t> children;
  for (int name = 0; name < processes; ++name) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (int i = 0; i < count;) {
        std::vector<std::string> lines;
        for (int batch = 0; batch < 1 + i % 5 && i < count; ++batch, ++i) {
          lines.push_back(std::to_string(name) + " " + std::to_string(i) + " " +
                          std::string(filling, 'x') + "\n");
        }
        appendToLogFile(file, lines);
      }
      ::_exit(0);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
}

/// Checks that every line is whole and that no process's lines have a gap; how many lines there
/// are, and the last number of each process.
std::map<int, std::pair<int, int>> countWholeLines(const std::string& text, std::size_t filling) {
  std::map<int, std::pair<int, int>> counts;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    int name = -1;
    int number = -1;
    std::string rest;
    words >> name >> number >> rest;
    EXPECT_EQ(rest, std::string(filling, 'x')) << line;
    auto& [count, last] = counts[name];
    EXPECT_TRUE(count == 0 || number == last + 1) << line;
    ++count;
    last = number;
  }
  return counts;
}

TEST_F(LogFileTest, IsSharedByProcessesWithoutLosingALine) {
  constexpr int count = 1000;
  appendFromProcesses(file, 3, count, 100);
  const auto counts = countWholeLines(TestFiles::read(file), 100);
  ASSERT_EQ(counts.size(), 3U);
  for (const auto& [name, found] : counts) EXPECT_EQ(found.first, count) << name;
  EXPECT_FALSE(fs::exists(old));
}

TEST_F(LogFileTest, IsRotatedByProcessesThatShareIt) {
  constexpr int count = 2500;
  appendFromProcesses(file, 2, count, 1000);
  // Five rotations or so later the last two generations must join without a gap.
  const auto counts = countWholeLines(TestFiles::read(old) + TestFiles::read(file), 1000);
  int last = 0;
  for (const auto& [name, found] : counts) last = std::max(last, found.second);
  EXPECT_EQ(last, count - 1);
  EXPECT_GT(fs::file_size(old), keptSize);
  EXPECT_LE(fs::file_size(old), keptSize + 1100);
  EXPECT_LE(fs::file_size(file), keptSize + 1100);
}

}  // namespace
}  // namespace corvane
