#include "corvane_mcp/server/LineReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/AllocatedMemory.h"
#include "tests/support/Pipe.h"

namespace corvane::testing {
namespace {

constexpr const char* overlong = "(too long)";

/// The lines that a reader has at hand.
std::vector<std::string> buffered(LineReader& reader) {
  std::vector<std::string> lines;
  while (const auto line = reader.nextBuffered()) {
    lines.emplace_back(line->tooLong ? overlong : line->text);
  }
  return lines;
}

/// All lines of an input that ends.
std::vector<std::string> allLines(LineReader& reader) {
  std::vector<std::string> lines;
  do {
    for (auto& line : buffered(reader)) lines.push_back(std::move(line));
  } while (reader.readMore());
  return lines;
}

/// The lines of `text` when it arrives in these pieces, each read before the next is sent.
std::vector<std::string> linesOf(const std::vector<std::string_view>& pieces,
                                 std::size_t limit = LineReader::longestLine) {
  Pipe pipe;
  LineReader reader(pipe.reading.get(), limit);
  std::vector<std::string> lines;
  for (const auto piece : pieces) {
    if (piece.empty()) continue;
    writeAll(pipe.writing.get(), piece);
    EXPECT_TRUE(reader.readMore());
    for (auto& line : buffered(reader)) lines.push_back(std::move(line));
  }
  pipe.writing.close();
  EXPECT_FALSE(reader.readMore());
  return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReaderTest, CutsAtLineFeeds) {
  EXPECT_EQ(linesOf({"one\ntwo\n"}), (Lines{"one", "two"}));
  EXPECT_EQ(linesOf({""}), Lines());
}

TEST(LineReaderTest, HandsEmptyLinesOut) {
  EXPECT_EQ(linesOf({"\n\na\n\n"}), (Lines{"", "", "a", ""}));
}

TEST(LineReaderTest, LeavesCarriageReturnsAndNulsInTheLine) {
  EXPECT_EQ(linesOf({std::string_view("a\r\n\r\nb\0c\n", 9)}),
            (Lines{"a\r", "\r", std::string("b\0c", 3)}));
}

TEST(LineReaderTest, LosesWhatFollowsTheLastLineFeed) {
  EXPECT_EQ(linesOf({"one\ntwo"}), Lines{"one"});
}

TEST(LineReaderTest, DoesNotMindWhereTheBytesAreSplit) {
  const std::string_view text = "first line\n\nsecond ü\r\nx\nlast\n";
  const Lines expected{"first line", "", "second ü\r", "x", "last"};
  for (std::size_t first = 0; first <= text.size(); ++first) {
    for (std::size_t second = first; second <= text.size(); ++second) {
      EXPECT_EQ(
          linesOf({text.substr(0, first), text.substr(first, second - first), text.substr(second)}),
          expected)
          << first << " " << second;
    }
  }
}

TEST(LineReaderTest, TakesALineAsSoonAsItIsComplete) {
  Pipe pipe;
  LineReader reader(pipe.reading.get());
  writeAll(pipe.writing.get(), "one\ntw");
  ASSERT_TRUE(reader.readMore());
  EXPECT_EQ(buffered(reader), Lines{"one"});
  writeAll(pipe.writing.get(), "o\n");
  ASSERT_TRUE(reader.readMore());
  EXPECT_EQ(buffered(reader), Lines{"two"});
}

TEST(LineReaderTest, ReportsAnOverlongLineOnceAndGoesOn) {
  EXPECT_EQ(linesOf({"12345\n123456\nok\n"}, 5), (Lines{"12345", overlong, "ok"}));
  EXPECT_EQ(linesOf({"123456789", "123456789", "12\nok\n"}, 5), (Lines{overlong, "ok"}));
  // The carriage return counts.
  EXPECT_EQ(linesOf({"12345\r\nok\r\n"}, 5), (Lines{overlong, "ok\r"}));
}

TEST(LineReaderTest, FindsOverlongLinesHoweverTheyAreSplit) {
  const std::string_view text = "12345\n1234567\nab\n12345678901234567890\n\n123456\n54321\n";
  const Lines expected{"12345", overlong, "ab", overlong, "", overlong, "54321"};
  for (std::size_t at = 0; at <= text.size(); ++at) {
    EXPECT_EQ(linesOf({text.substr(0, at), text.substr(at)}, 5), expected) << at;
  }
  std::vector<std::string_view> bytes;
  for (std::size_t at = 0; at < text.size(); ++at) bytes.push_back(text.substr(at, 1));
  EXPECT_EQ(linesOf(bytes, 5), expected);
}

TEST(LineReaderTest, IsNotToldOfAnOverlongLineThatNeverEnds) {
  EXPECT_EQ(linesOf({"123456789"}, 5), Lines());
}

TEST(LineReaderTest, ReadsLinesOfManyChunks) {
  Pipe pipe;
  std::string text;
  Lines expected;
  for (const std::size_t length : {70'000U, 1U, 3'000'000U, 65'536U, 65'535U, 0U, 200'000U}) {
    expected.emplace_back(length, static_cast<char>('a' + expected.size()));
    text += expected.back() + "\n";
  }
  std::thread sender([&] {
    std::string_view rest = text;
    while (!rest.empty()) {
      const ssize_t count = ::write(pipe.writing.get(), rest.data(), rest.size());
      rest.remove_prefix(static_cast<std::size_t>(count));
    }
    pipe.writing.close();
  });
  LineReader reader(pipe.reading.get());
  const Lines lines = allLines(reader);
  sender.join();
  EXPECT_TRUE(lines == expected);
}

TEST(LineReaderTest, WaitsOnANonBlockingInputAndLeavesItsModeAlone) {
  Pipe pipe;
  makeNonBlocking(pipe.reading.get());
  const int mode = ::fcntl(pipe.reading.get(), F_GETFL);
  std::thread sender([&] {
    writeAll(pipe.writing.get(), "one\n");
    pipe.writing.close();
  });
  LineReader reader(pipe.reading.get());
  EXPECT_EQ(allLines(reader), Lines{"one"});
  sender.join();
  EXPECT_EQ(::fcntl(pipe.reading.get(), F_GETFL), mode);
}

/// Sends `text` through `pipe` while `reader` reads it. How much more memory is in use afterwards;
/// the lines are left.
std::size_t memoryAfterReading(Pipe& pipe, LineReader& reader, std::string_view text) {
  const std::size_t before = allocatedBytes();
  while (!text.empty()) {
    // What a pipe takes at once.
    const auto piece = text.substr(0, std::size_t{60} << 10);
    writeAll(pipe.writing.get(), piece);
    EXPECT_TRUE(reader.readMore());
    (void)buffered(reader);
    text.remove_prefix(piece.size());
  }
  const std::size_t after = allocatedBytes();
  return after - std::min(after, before);
}

constexpr std::size_t oneMegabyte = 1'000'000;

// Fails when a buffer that one huge line needed is kept for the lines after it.
TEST(LineReaderTest, TheMemoryForAHugeLineIsGivenBack) {
  const std::string huge(8 * oneMegabyte, 'x');
  Pipe pipe;
  LineReader reader(pipe.reading.get());
  EXPECT_GT(memoryAfterReading(pipe, reader, huge), huge.size());
  // The end of the line, and a line after it.
  const std::size_t before = allocatedBytes();
  (void)memoryAfterReading(pipe, reader, "\n");
  (void)memoryAfterReading(pipe, reader, "next\n");
  EXPECT_LT(allocatedBytes() + huge.size(), before + oneMegabyte);
}

// Fails when what cannot be handed out any more is kept.
TEST(LineReaderTest, AnOverlongLineIsNotKept) {
  Pipe pipe;
  LineReader reader(pipe.reading.get(), 100'000);
  const std::string huge(8 * oneMegabyte, 'x');
  EXPECT_LT(memoryAfterReading(pipe, reader, huge), oneMegabyte);
}

std::chrono::nanoseconds processorTime() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// Fails when an input that has nothing yet is asked again and again.
TEST(LineReaderTest, WaitsForANonBlockingInputWithoutWork) {
  Pipe pipe;
  makeNonBlocking(pipe.reading.get());
  LineReader reader(pipe.reading.get());
  std::thread sender([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    writeAll(pipe.writing.get(), "one\n");
  });
  const auto before = processorTime();
  EXPECT_TRUE(reader.readMore());
  EXPECT_LT(processorTime() - before, std::chrono::milliseconds(20));
  sender.join();
}

TEST(LineReaderTest, TakesAnInputThatCannotBeReadForOneThatHasEnded) {
  LineReader closed(-1);
  EXPECT_FALSE(closed.readMore());
  const FileDescriptor folder(::open("/", O_RDONLY | O_CLOEXEC));
  LineReader unreadable(folder.get());
  EXPECT_FALSE(unreadable.readMore());
  EXPECT_FALSE(unreadable.nextBuffered());
}

}  // namespace
}  // namespace corvane::testing
