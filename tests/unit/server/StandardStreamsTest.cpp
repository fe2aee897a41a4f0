#include "corvane_mcp/server/StandardStreams.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "tests/support/Pipe.h"

namespace corvane {
namespace {

/// What a child process writes to its standard output and error while it runs `act`.
struct Written {
  std::string output;
  std::string errors;
};

Written writtenBy(const std::function<void()>& act) {
  Pipe output;
  Pipe errors;
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

}  // namespace
}  // namespace corvane
