#include "corvane_mcp/server/ErrorStream.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "tests/support/Pipe.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

class ErrorStreamTest : public testing::Test {
 protected:
  static std::string line(char letter, std::size_t length) {
    return std::string(length, letter) + "\n";
  }

  /// What waits in the pipe.
  std::string read() {
    std::string text(std::size_t{1} << 20, '\0');
    ::fcntl(pipe.reading.get(), F_SETFL, O_NONBLOCK);
    const auto count = ::read(pipe.reading.get(), text.data(), text.size());
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
  }

  Pipe pipe;
  ErrorStream stream{pipe.writing.get(), 1ms};
};

TEST_F(ErrorStreamTest, WritesLinesInTheirOrder) {
  stream.write("one\n");
  stream.write(line('x', 20000));
  stream.write("two\n");
  EXPECT_EQ(read(), "one\n" + line('x', 20000) + "two\n");
}

TEST_F(ErrorStreamTest, DropsWholeLinesWhileNobodyReads) {
  for (int i = 0; i < 100; ++i) stream.write(line('a', 3000));
  const auto first = read();
  EXPECT_GT(first.size(), 3001U);
  EXPECT_EQ(first.size() % 3001, 0U);
  stream.write("next\n");
  EXPECT_EQ(read(), "next\n");
}

TEST_F(ErrorStreamTest, FinishesTheLineThatTheReaderStoppedIn) {
  const auto longLine = line('b', 100'000);
  stream.write(longLine);
  stream.write("dropped\n");
  auto text = read();
  ASSERT_LT(text.size(), longLine.size());
  stream.write("next\n");
  text += read();
  EXPECT_EQ(text, longLine + "next\n");
}

TEST_F(ErrorStreamTest, WaitsForASlowReader) {
  ErrorStream patient(pipe.writing.get(), 60s);
  constexpr std::size_t count = 2000;
  std::string text;
  std::thread reader([&] {
    char byte = 0;
    while (text.size() < count * 101 && ::read(pipe.reading.get(), &byte, 1) == 1) text += byte;
  });
  for (std::size_t i = 0; i < count; ++i) patient.write(line('c', 100));
  reader.join();
  EXPECT_EQ(text.size(), count * 101);
}

TEST_F(ErrorStreamTest, AReaderThatIsGoneHoldsUpNobody) {
  ErrorStream patient(pipe.writing.get(), 60s);
  pipe.reading.close();
  ::signal(SIGPIPE, SIG_IGN);
  for (int i = 0; i < 1000; ++i) patient.write(line('d', 3000));
  pipe.writing.close();
  patient.write("no descriptor any more\n");
}

}  // namespace
}  // namespace corvane
