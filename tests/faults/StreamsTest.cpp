#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <future>
#include <sstream>
#include <string>
#include <vector>

#include "tests/faults/FaultTest.h"
#include "tests/support/Pipe.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

class StreamsTest : public FaultTest {
 protected:
  /// Some requests, a line each, and their replies.
  const std::string requests = ping(1) + "\r\n\n" + ping(2) + "\nnonsense\n" + ping(3) + "\n";
  const Lines replies{
      pong(1), pong(2),
      R"({"error":{"code":-32700,"message":"not valid JSON: unexpected text at byte 0"},)"
      R"("id":null,"jsonrpc":"2.0"})",
      pong(3)};
};

TEST_F(StreamsTest, InputMayComeByteByByte) {
  ServerProcess server(setup());
  for (const char byte : requests) {
    server.send(std::string(1, byte));
    server.waitUntilTaken();
  }
  server.closeInput();
  EXPECT_EQ(server.readToEnd(), replies);
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(StreamsTest, InputMayBeAFile) {
  TestFiles::write(home.path() / "input", requests + R"({"jsonrpc":"2.0","id":4,"method":"ping"})");
  auto given = setup();
  given.input = FileDescriptor(::open((home.path() / "input").c_str(), O_RDONLY | O_CLOEXEC));
  ServerProcess server(std::move(given));
  EXPECT_EQ(server.readToEnd(), replies);
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(StreamsTest, InputAndOutputMayBeOneSocket) {
  for (const bool nonBlocking : {false, true}) {
    SocketPair sockets;
    if (nonBlocking) makeNonBlocking(sockets.theirs.get());
    const int mode = ::fcntl(sockets.theirs.get(), F_GETFL);
    FileDescriptor same(::fcntl(sockets.theirs.get(), F_DUPFD_CLOEXEC, 0));
    auto given = setup();
    given.input = FileDescriptor(::fcntl(sockets.theirs.get(), F_DUPFD_CLOEXEC, 0));
    given.output = std::move(sockets.theirs);
    ServerProcess server(std::move(given));

    writeAll(sockets.ours.get(), requests);
    std::string first(pong(1).size(), '\0');
    EXPECT_EQ(::recv(sockets.ours.get(), first.data(), first.size(), MSG_WAITALL),
              static_cast<ssize_t>(first.size()));
    // Other programs may share the socket's mode: it is left as it was.
    EXPECT_EQ(::fcntl(same.get(), F_GETFL), mode);
    same.close();
    ::shutdown(sockets.ours.get(), SHUT_WR);
    EXPECT_EQ(linesOf(first + readToEnd(sockets.ours.get())), replies);
    EXPECT_EQ(server.wait(), "exit 0");
  }
}

TEST_F(StreamsTest, PipesMayBeNonBlocking) {
  Pipe in;
  Pipe out;
  makeNonBlocking(in.reading.get());
  makeNonBlocking(out.writing.get());
  auto given = setup();
  given.input = std::move(in.reading);
  given.output = std::move(out.writing);
  ServerProcess server(std::move(given));

  // More than the pipes hold, so that the server has to wait in both directions.
  constexpr int count = 20'000;
  auto received =
      std::async(std::launch::async, [&] { return linesOf(readToEnd(out.reading.get())); });
  for (int i = 0; i < count; ++i) writeAll(in.writing.get(), ping(i) + "\n");
  in.writing.close();
  const Lines lines = received.get();
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) ASSERT_EQ(lines[static_cast<std::size_t>(i)], pong(i));
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(StreamsTest, InputMayBeATerminal) {
  FileDescriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  ASSERT_TRUE(terminal.isOpen() && ::grantpt(terminal.get()) == 0 &&
              ::unlockpt(terminal.get()) == 0);
  auto given = setup();
  given.input = FileDescriptor(::open(::ptsname(terminal.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  termios mode{};
  ::tcgetattr(given.input.get(), &mode);
  ::cfmakeraw(&mode);
  ::tcsetattr(given.input.get(), TCSANOW, &mode);
  ServerProcess server(std::move(given));
  writeAll(terminal.get(), requests);
  for (const auto& reply : replies) EXPECT_EQ(server.readLine(), reply);
  terminal.close();
  EXPECT_EQ(server.readToEnd(), Lines());
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(StreamsTest, AReaderThatIsGoneEndsNothing) {
  ServerProcess server(setup());
  server.sendLine(ping(1));
  EXPECT_EQ(server.readLine(), pong(1));
  server.closeOutput();
  for (int i = 0; i < 200; ++i) server.sendLine(ping(i));
  for (int i = 0; i < 3; ++i) server.sendLine(call(i, "run_test", anyRun));
  server.sendLine(call(4, "get_result",
                       R"({"requestId":"0a1b2c3d-0000-4000-8000-00000000abcd",)"
                       R"("waitSeconds":1})"));
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
  EXPECT_EQ(requestFiles(), 3U);
  EXPECT_NE(server.errors().find("stdin closed; draining"), std::string::npos);
  EXPECT_TRUE(server.errors().ends_with("[INFO] stdin closed; exiting\n"));
}

TEST_F(StreamsTest, AReaderThatIsSlowCostsNoMemory) {
  Pipe in;
  makeNonBlocking(in.writing.get());
  auto given = setup();
  given.input = std::move(in.reading);
  ServerProcess server(std::move(given));

  // Nobody reads a reply, until the server takes nothing more.
  constexpr std::size_t tooMuch = std::size_t{64} << 20;
  const std::string line =
      R"({"jsonrpc":"2.0","id":")" + std::string(10'000, 'x') + R"(","method":"ping"})" + "\n";
  std::size_t sent = 0;
  pollfd ready{in.writing.get(), POLLOUT, 0};
  while (sent < tooMuch && ::poll(&ready, 1, 500) == 1) {
    const std::string_view rest = std::string_view(line).substr(sent % line.size());
    const ssize_t count = ::write(in.writing.get(), rest.data(), rest.size());
    if (count > 0) sent += static_cast<std::size_t>(count);
  }
  EXPECT_LT(sent, std::size_t{8} << 20);
  expectMemoryBelow(std::size_t{64} << 10, server);

  // Once somebody does, nothing has been lost.
  const std::size_t complete = sent / line.size();
  in.writing.close();
  EXPECT_EQ(server.readToEnd().size(), complete);
  EXPECT_EQ(server.wait(), "exit 0");
}

TEST_F(StreamsTest, StandardErrorNeedNotBeRead) {
  constexpr int count = 3000;
  auto given = setup();
  given.readsErrors = false;
  ServerProcess server(std::move(given));
  for (int i = 0; i < count; ++i) server.sendLine(ping(i));
  for (int i = 0; i < count; ++i) ASSERT_EQ(server.readLine(), pong(i));
  server.closeInput();
  EXPECT_EQ(server.wait(), "exit 0");
  // The file has it all.
  EXPECT_EQ(TestFiles::lines(paths.logFile()).size(), static_cast<std::size_t>(count) + 2);
}

TEST_F(StreamsTest, AnyStreamMayBeClosedFromTheStart) {
  for (const auto& closed :
       std::vector<std::vector<int>>{{0}, {1}, {2}, {0, 1}, {1, 2}, {0, 1, 2}}) {
    std::filesystem::remove_all(paths.applicationSupport());
    std::filesystem::remove_all(paths.logsDirectory());
    const bool hasInput = closed.front() != 0;
    auto given = setup();
    given.closedStreams = closed;
    ServerProcess server(std::move(given));
    if (hasInput) server.sendLine(call(1, "run_test", anyRun));
    server.closeInput();
    EXPECT_EQ(server.wait(), "exit 0");
    // Neither the protocol nor the log went into the files that were opened meanwhile.
    EXPECT_EQ(requestFiles(), hasInput ? 1U : 0U);
    for (const auto& file : listVisible(paths.agentRunRequestsDirectory())) {
      EXPECT_TRUE(TestFiles::read(file).starts_with("{\"createdAt\":"));
    }
    const auto log = TestFiles::lines(paths.logFile());
    ASSERT_FALSE(log.empty());
    EXPECT_TRUE(log.back().ends_with("stdin closed; exiting"));
  }
}

TEST_F(StreamsTest, SignalsKeepTheirMeaningExceptForBrokenPipes) {
  for (const auto& [signal, end] :
       std::vector<std::pair<int, std::string>>{{SIGTERM, "signal 15"}, {SIGINT, "signal 2"}}) {
    ServerProcess server(setup());
    server.sendLine(ping(1));
    EXPECT_EQ(server.readLine(), pong(1));
    ::kill(server.id(), SIGPIPE);
    server.sendLine(ping(2));
    EXPECT_EQ(server.readLine(), pong(2));
    ::kill(server.id(), signal);
    EXPECT_EQ(server.wait(), end);
  }
}

}  // namespace
}  // namespace corvane::testing
