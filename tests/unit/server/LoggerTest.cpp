#include "corvane_mcp/server/Logger.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <future>
#include <latch>
#include <map>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/Date.h"
#include "tests/support/LogLines.h"
#include "tests/support/Pipe.h"
#include "tests/support/ProcessFacts.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Timeout.h"
#include "tests/unit/server/StandardStreamCapture.h"

namespace corvane::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

/// The largest file that is kept.
constexpr std::size_t keptSize = 1'048'576;

class LogFileTest : public ::testing::Test {
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

/// Whether appending ends by itself; if not, `letGo` has to make it end.
template <class LetGo>
bool appendingEnds(const fs::path& file, const std::vector<std::string>& lines, LetGo letGo) {
  auto appending = std::async(std::launch::async, [&] { appendToLogFile(file, lines); });
  const bool ends = appending.wait_for(testTimeout) == std::future_status::ready;
  letGo();
  appending.get();
  return ends;
}

// Fails when another server's lock is not waited for, whether it writes or reads, or when one that
// never goes is.
TEST_F(LogFileTest, WaitsALittleForAnotherServer) {
  for (const int kind : {LOCK_EX, LOCK_SH}) {
    TestFiles::write(file, "");
    FileDescriptor lock(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(::flock(lock.get(), kind), 0);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(appendingEnds(file, {"new\n"}, [&lock] { lock.close(); }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(100));
    EXPECT_EQ(TestFiles::read(file), "new\n");
  }
}

TEST_F(LogFileTest, PassesOverWhatCannotBeWritten) {
  appendToLogFile(home.path() / "missing" / "mcp.log", {"x\n"});
  fs::create_directory(file);
  appendToLogFile(file, {"x\n"});
  EXPECT_TRUE(appendingEnds("/dev/full", {"x\n"}, [] {}));
  EXPECT_EQ(home.entries(), std::vector<std::string>{"mcp.log"});
}

// Fails when opening waits for a reader, or writing for one that does not read.
TEST_F(LogFileTest, AFifoHoldsNobodyUp) {
  std::signal(SIGPIPE, SIG_IGN);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  FileDescriptor reader;
  const auto read = [&] { reader = FileDescriptor(::open(file.c_str(), O_RDONLY | O_NONBLOCK)); };
  EXPECT_TRUE(appendingEnds(file, {"nobody reads\n"}, read));
  const std::string more(std::size_t{1} << 20, 'x');
  std::string first(4, '\0');
  EXPECT_TRUE(appendingEnds(file, {"one\n", more}, [&] {
    EXPECT_EQ(::read(reader.get(), first.data(), first.size()), 4);
    reader.close();
  }));
  EXPECT_EQ(first, "one\n");
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

class LoggerTest : public ::testing::Test {
 protected:
  LoggerTest() { std::signal(SIGPIPE, SIG_IGN); }

  TemporaryHome home;
  fs::path file = home.paths().logFile();
};

TEST_F(LoggerTest, WritesTheExactLineToStandardErrorAndToTheFile) {
  const StandardStreamCapture errors(STDERR_FILENO, home.path() / "stderr");
  const StandardStreamCapture output(STDOUT_FILENO, home.path() / "stdout");
  const Date before = currentDate();
  Logger(file).emit(Logger::Level::info, "corvane-mcp starting (corvane-mcp v0.2.0)");
  const Date after = currentDate();

  const auto line = [](Date date) {
    return "[" + formatDate(date) + "] [INFO] corvane-mcp starting (corvane-mcp v0.2.0)\n";
  };
  const std::string written = TestFiles::read(file);
  EXPECT_TRUE(written == line(before) || written == line(after)) << written;
  EXPECT_EQ(errors.text(), written);
  EXPECT_EQ(output.text(), "");
}

TEST_F(LoggerTest, NamesItsThreeLevels) {
  {
    Logger logger(file);
    logger.info("a");
    logger.warn("b");
    logger.error("c");
  }
  std::vector<std::string> lines;
  for (const auto& line : TestFiles::lines(file)) lines.push_back(levelAndMessage(line).value());
  EXPECT_EQ(lines, (std::vector<std::string>{"INFO a", "WARN b", "ERROR c"}));
}

TEST_F(LoggerTest, KeepsOneEventOnOneLine) {
  Logger(file).info("a\nb\r\tc\x1b[31m\0d\x7f ü → \u0085\u2028\u2029"sv);
  ASSERT_EQ(TestFiles::lines(file).size(), 1U);
  EXPECT_EQ(levelAndMessage(TestFiles::lines(file).front()),
            "INFO a\\nb\\r\\tc\\u001b[31m\\u0000d\\u007f ü → \\u0085\\u2028\\u2029");
}

// Fails when a name can move what stands beside it in the line.
TEST_F(LoggerTest, KeepsTheOrderOfALine) {
  Logger(file).info("Launched \u202Eppa.yek\u2066 at /src: success=true");
  ASSERT_EQ(TestFiles::lines(file).size(), 1U);
  EXPECT_EQ(levelAndMessage(TestFiles::lines(file).front()),
            "INFO Launched \\u202eppa.yek\\u2066 at /src: success=true");
}

TEST_F(LoggerTest, CreatesItsFolderWithParents) {
  ASSERT_FALSE(fs::exists(file.parent_path()));
  const Logger logger(file);
  EXPECT_TRUE(fs::is_directory(file.parent_path()));
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(LoggerTest, LosesNoLineWhenItEnds) {
  constexpr int count = 5000;
  {
    Logger logger(file);
    for (int i = 0; i < count; ++i) logger.info(std::to_string(i));
  }
  const auto lines = TestFiles::lines(file);
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    ASSERT_EQ(levelAndMessage(lines[static_cast<std::size_t>(i)]), "INFO " + std::to_string(i));
  }
}

TEST_F(LoggerTest, MayBeCalledFromSeveralThreads) {
  constexpr int threadCount = 8;
  constexpr int count = 25;
  const StandardStreamCapture errors(STDERR_FILENO, home.path() / "stderr");
  {
    Logger logger(file);
    std::vector<std::thread> threads;
    for (int name = 0; name < threadCount; ++name) {
      threads.emplace_back([&logger, name] {
        for (int i = 0; i < count; ++i) {
          logger.info(std::to_string(name) + " " + std::to_string(i) + " " +
                      std::string(static_cast<std::size_t>(i * 200), 'x'));
        }
      });
    }
    for (auto& thread : threads) thread.join();
  }
  for (const auto& text : {TestFiles::read(file), errors.text()}) {
    std::map<int, int> next;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      const auto message = levelAndMessage(line);
      ASSERT_TRUE(message) << line;
      std::istringstream words(*message);
      std::string level;
      std::string filling;
      int name = -1;
      int number = -1;
      words >> level >> name >> number >> filling;
      ASSERT_EQ(number, next[name]++);
      ASSERT_EQ(filling.size(), static_cast<std::size_t>(number * 200));
    }
    for (int name = 0; name < threadCount; ++name) EXPECT_EQ(next[name], count) << name;
  }
}

TEST_F(LoggerTest, GoesOnWithStandardErrorAloneWhereNoFileCanBe) {
  const StandardStreamCapture errors(STDERR_FILENO, home.path() / "stderr");
  TestFiles::write(home.path() / "Library", "not a folder");
  {
    Logger logger(file);
    logger.info("still here");
  }
  EXPECT_EQ(levelAndMessage(errors.text()), "INFO still here\n");
  EXPECT_EQ(home.entries(), (std::vector<std::string>{"Library", "stderr"}));
}

TEST_F(LoggerTest, GoesOnWhenNobodyHasEverReadStandardError) {
  const Pipe unread;
  const StandardStreamReplacement errors(STDERR_FILENO, unread.writing.get());
  constexpr int count = 3000;
  const auto start = std::chrono::steady_clock::now();
  {
    Logger logger(file);
    for (int i = 0; i < count; ++i) logger.info(std::string(100, 'x'));
  }
  // A second is waited, once.
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(9));
  EXPECT_EQ(TestFiles::lines(file).size(), static_cast<std::size_t>(count));
}

// Of several threads that find room for one line only one may take it; the others would wait for a
// reader that never comes.
TEST_F(LoggerTest, GoesOnWhenThreadsFillStandardErrorTogether) {
  constexpr int threadCount = 4;
  Logger logger(file, std::chrono::milliseconds(1));
  for (int round = 0; round < 200; ++round) {
    const Pipe unread;
    const StandardStreamReplacement errors(STDERR_FILENO, unread.writing.get());
    writeAll(unread.writing.get(), std::string(std::size_t{60} << 10, 'x'));
    std::latch start(threadCount);
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
      threads.emplace_back([&] {
        start.arrive_and_wait();
        logger.info(std::string(4000, 'x'));
      });
    }
    for (auto& thread : threads) thread.join();
  }
}

TEST_F(LoggerTest, GoesOnWhenTheReaderOfStandardErrorIsGone) {
  Pipe pipe;
  const StandardStreamReplacement errors(STDERR_FILENO, pipe.writing.get());
  pipe.reading.close();
  {
    Logger logger(file);
    logger.info("one");
    logger.info("two");
  }
  EXPECT_EQ(TestFiles::lines(file).size(), 2U);
}

TEST_F(LoggerTest, RotatesItsFile) {
  fs::create_directories(file.parent_path());
  TestFiles::write(file, std::string(1'048'577, 'x'));
  Logger(file).info("new");
  EXPECT_EQ(TestFiles::lines(file).size(), 1U);
  EXPECT_EQ(fs::file_size(file.parent_path() / "mcp.1.log"), 1'048'577U);
}

}  // namespace
}  // namespace corvane::testing
