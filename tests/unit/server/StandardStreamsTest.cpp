#include "corvane_mcp/server/StandardStreams.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>
#include <thread>

#include "tests/support/Pipe.h"

namespace corvane::testing {
namespace {

/// What a child process writes to its standard output and error while it runs `act`.
struct Written {
  std::string output;
  std::string errors;
};

Written writtenBy(const std::function<void()>& act) {
  Pipe output;
  Pipe errors;
  // What this process has buffered would be the child's to write as well.
  std::fflush(stdout);
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(output.writing.get(), STDOUT_FILENO);
    ::dup2(errors.writing.get(), STDERR_FILENO);
    output.writing.close();
    errors.writing.close();
    act();
    std::fflush(stdout);
    ::_exit(0);
  }
  output.writing.close();
  errors.writing.close();
  Written written{readToEnd(output.reading.get()), readToEnd(errors.reading.get())};
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  return written;
}

TEST(StandardStreamsTest, LeadsWhatLibrariesPrintToStandardError) {
  const auto written = writtenBy([] {
    const FileDescriptor protocol = claimStandardOutput();
    std::printf("printed");
    std::fflush(stdout);
    writeAll(STDOUT_FILENO, " written");
    writeAll(protocol.get(), "message\n");
  });
  EXPECT_EQ(written.output, "message\n");
  EXPECT_EQ(written.errors, "printed written");
}

TEST(StandardStreamsTest, KeepsTheProtocolFromProgramsThatAreStarted) {
  writtenBy([] {
    const FileDescriptor protocol = claimStandardOutput();
    const bool closesOnExec = (::fcntl(protocol.get(), F_GETFD) & FD_CLOEXEC) != 0;
    if (protocol.get() <= STDERR_FILENO || !closesOnExec) ::_exit(1);
  });
}

TEST(StandardStreamsTest, LeadsStreamsThatAreClosedNowhere) {
  const auto written = writtenBy([] {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::close(stream);
    const FileDescriptor protocol = claimStandardOutput();
    char byte = 0;
    const bool inputIsEmpty = ::read(STDIN_FILENO, &byte, 1) == 0;
    writeAll(STDERR_FILENO, "x");
    writeAll(STDOUT_FILENO, "x");
    writeAll(protocol.get(), "x");
    // The next file opened must not become a standard stream.
    const FileDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    if (!inputIsEmpty || file.get() <= STDERR_FILENO) ::_exit(1);
  });
  EXPECT_EQ(written.output + written.errors, "");
}

TEST(StandardStreamsTest, LeadsAClosedOutputNowhereAndKeepsTheRest) {
  const auto written = writtenBy([] {
    ::close(STDOUT_FILENO);
    const FileDescriptor protocol = claimStandardOutput();
    writeAll(protocol.get(), "message");
    writeAll(STDERR_FILENO, "log");
  });
  EXPECT_EQ(written.output, "");
  EXPECT_EQ(written.errors, "log");
}

using namespace std::chrono_literals;

class ErrorStreamTest : public ::testing::Test {
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
  ErrorStream stream(pipe.writing.get(), 60s);
  constexpr std::size_t count = 2000;
  std::string text;
  std::thread reader([&] {
    char byte = 0;
    while (text.size() < count * 101 && ::read(pipe.reading.get(), &byte, 1) == 1) text += byte;
  });
  for (std::size_t i = 0; i < count; ++i) stream.write(line('c', 100));
  reader.join();
  EXPECT_EQ(text.size(), count * 101);
}

TEST_F(ErrorStreamTest, AReaderThatIsGoneHoldsUpNobody) {
  const int descriptor = pipe.writing.get();
  ErrorStream stream(descriptor, 60s);
  pipe.reading.close();
  ::signal(SIGPIPE, SIG_IGN);
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 1000; ++i) stream.write(line('d', 3000));
  pipe.writing.close();
  stream.write("no descriptor any more\n");
  EXPECT_LT(std::chrono::steady_clock::now() - start, 60s);
  // Nothing of all that is left for whoever reads next.
  Pipe next;
  pipe.writing = FileDescriptor(::dup2(next.writing.get(), descriptor));
  stream.write("next\n");
  pipe.reading = std::move(next.reading);
  EXPECT_EQ(read(), "next\n");
}

// Fails when what is left of a line waits for whoever reads next.
TEST_F(ErrorStreamTest, ALineWhoseReaderIsGoneIsNotFinished) {
  ::signal(SIGPIPE, SIG_IGN);
  stream.write(line('b', 100'000));
  pipe.reading.close();
  stream.write("dropped\n");
  Pipe next;
  ::dup2(next.writing.get(), pipe.writing.get());
  stream.write("next\n");
  pipe.reading = std::move(next.reading);
  EXPECT_EQ(read(), "next\n");
}

}  // namespace
}  // namespace corvane::testing
