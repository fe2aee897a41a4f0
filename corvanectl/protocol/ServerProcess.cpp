#include "corvanectl/protocol/ServerProcess.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "corvanectl/protocol/ProtocolError.h"

namespace corvane {

namespace {

using std::chrono::milliseconds;

/// How long the server may take to end once its standard input is closed, and again after SIGTERM.
/// Calls still in flight hold it up, so after Ctrl-C there is little patience.
constexpr milliseconds exitPatience(1000);
constexpr milliseconds exitPatienceWhenInterrupted(100);
constexpr milliseconds exitPollInterval(5);
constexpr milliseconds endCheckInterval(500);

/// Far above any answer that makes sense; something endless ends here.
constexpr std::size_t longestLine = std::size_t{512} << 20;

/// Reads what is there into `take`; false at the end of the file.
template <class Take>
bool readAvailable(const FileDescriptor& file, Take take) {
  std::array<char, std::size_t{64} << 10> chunk;
  const ssize_t count = ::read(file.get(), chunk.data(), chunk.size());
  if (count > 0) take(std::string_view(chunk.data(), static_cast<std::size_t>(count)));
  return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

ChildProcess startServer(const std::filesystem::path& program) {
  try {
    return ChildProcess::start(program);
  } catch (const std::system_error& error) {
    throw ProtocolError(error.what());
  }
}

}  // namespace

ServerProcess::ServerProcess(const std::filesystem::path& program, ServerLog& log,
                             Interruption& interruption)
    : log(log), interruption(interruption), child(startServer(program)) {}

ServerProcess::~ServerProcess() {
  try {
    close();
  } catch (...) {
    // Nobody is left to show the log to. What matters is that the server does not stay.
    child.errors.close();
    child.signal(SIGKILL);
    waitForEnd(exitPatience);
  }
}

void ServerProcess::send(std::string_view line) {
  outgoing.append(line).push_back('\n');
}

std::optional<std::string> ServerProcess::readLine(Deadline deadline) {
  while (true) {
    if (auto line = incoming.takeLine()) return line;
    if (!child.output.isOpen()) reportEnd();
    if (incoming.size() > longestLine) throw ProtocolError("the server sent a line without end");
    if (hasPassed(deadline)) return std::nullopt;
    // A program that the server started may hold its pipes open, so that they do not show its end.
    // The last look is for what the server may have said just before it ended.
    const bool idle = !exchange(std::min(deadline, after(endCheckInterval)));
    if (idle && child.hasEnded() && !exchange(after(Seconds(0)))) reportEnd();
  }
}

/// Moves bytes in all directions once they can move; false when `deadline` comes first.
bool ServerProcess::exchange(Deadline deadline) {
  std::array<pollfd, 3> files{{{outgoing.empty() ? -1 : child.input.get(), POLLOUT, 0},
                               {child.output.get(), POLLIN, 0},
                               {child.errors.get(), POLLIN, 0}}};
  if (!interruption.wait(files, deadline)) return false;
  if (files[0].revents != 0) writeOutgoing();
  if (files[1].revents != 0) readOutput();
  if (files[2].revents != 0) readErrors();
  return true;
}

void ServerProcess::writeOutgoing() {
  const ssize_t count =
      ::write(child.input.get(), outgoing.data() + written, outgoing.size() - written);
  if (count >= 0) {
    written += static_cast<std::size_t>(count);
    if (written < outgoing.size()) return;
    outgoing.clear();
    written = 0;
  } else if (errno != EAGAIN && errno != EINTR) {
    // The server reads no more. What that means shows in what it still says, or in its end.
    child.input.close();
  }
}

void ServerProcess::readOutput() {
  const auto take = [this](std::string_view bytes) { incoming.append(bytes); };
  if (!readAvailable(child.output, take)) child.output.close();
}

void ServerProcess::readErrors() {
  const auto take = [this](std::string_view bytes) { log.append(bytes); };
  if (!readAvailable(child.errors, take)) child.errors.close();
}

void ServerProcess::reportEnd() {
  child.input.close();
  if (!waitForEnd(exitPatience)) {
    throw ServerEnded("the server closed its standard output without ending");
  }
  throw ServerEnded("the server " + child.ending());
}

void ServerProcess::close() {
  const milliseconds patience =
      interruption.happened() ? exitPatienceWhenInterrupted : exitPatience;
  child.input.close();
  for (const int signal : {0, SIGTERM, SIGKILL}) {
    if (signal != 0) child.signal(signal);
    if (waitForEnd(patience)) break;
  }
  log.finish();
}

/// Keeps reading, so that a server with more to say is not held up by a full pipe. Its messages
/// interest nobody any more.
bool ServerProcess::waitForEnd(milliseconds patience) {
  const Deadline deadline = after(patience);
  while (!child.hasEnded()) {
    if (hasPassed(deadline)) return false;
    std::array<pollfd, 2> files{{{child.output.get(), POLLIN, 0}, {child.errors.get(), POLLIN, 0}}};
    ::poll(files.data(), files.size(), exitPollInterval.count());
    if (files[0].revents != 0 && !readAvailable(child.output, [](std::string_view) {})) {
      child.output.close();
    }
    if (files[1].revents != 0) readErrors();
  }
  if (child.errors.isOpen()) readErrors();
  return true;
}

}  // namespace corvane
