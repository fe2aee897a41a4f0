#include "corvane_mcp/server/Logger.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <latch>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "CorvaneCore/json/Date.h"
#include "tests/support/LogLines.h"
#include "tests/support/Pipe.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/TestFiles.h"
#include "tests/unit/server/StandardStreamCapture.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using namespace std::string_view_literals;

class LoggerTest : public testing::Test {
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
  {
    Logger logger(file);
    for (int i = 0; i < count; ++i) logger.info(std::string(100, 'x'));
  }
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
}  // namespace corvane
