#include "corvanectl/protocol/ServerProcess.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

/// How long the server may take to end once its standard input is closed, and again after SIGTERM.
/// Calls still in flight hold it up, so after Ctrl-C it has less.
constexpr milliseconds exitTimeout(1000);
constexpr milliseconds exitTimeoutWhenInterrupted(100);
constexpr milliseconds exitPollInterval(5);
constexpr milliseconds endCheckInterval(500);

/// A line of the log that is longer is cut apart.
constexpr std::size_t longestLogLine = std::size_t{64} << 10;
constexpr std::size_t longestLogLineKept = 500;

/// Reads what is there into `take`; false at the end of the file.
template <class Take>
bool readAvailable(const FileDescriptor& file, Take take) {
  std::array<char, std::size_t{64} << 10> chunk;
  const ssize_t count = ::read(file.get(), chunk.data(), chunk.size());
  if (count > 0) take(std::string_view(chunk.data(), static_cast<std::size_t>(count)));
  return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

ChildProcess startServer(const fs::path& program) {
  try {
    return ChildProcess::startPiped(program);
  } catch (const std::system_error& error) {
    throw ProtocolError(error.what());
  }
}

}  // namespace

fs::path locateServer(const std::optional<fs::path>& given, const fs::path& ownPath,
                      std::string_view searchPath) {
  constexpr std::string_view name = "corvane-mcp";
  if (given) return *given;
  if (!ownPath.empty()) {
    if (fs::path beside = ownPath.parent_path() / name; isProgram(beside)) return beside;
  }
  if (auto found = findProgram(name, searchPath)) return *std::move(found);
  throw ProtocolError(
      "there is no corvane-mcp beside this program or on the PATH; "
      "name it with --server");
}

void LineBuffer::append(std::string_view bytes) {
  // Moving the rest to the front only when as much was taken keeps the cost per byte constant.
  if (start > held.size() / 2) {
    held.erase(0, start);
    searched -= start;
    start = 0;
  }
  held += bytes;
}

std::optional<std::string> LineBuffer::takeLine() {
  const std::size_t end = held.find('\n', searched);
  if (end == std::string::npos) {
    searched = held.size();
    return std::nullopt;
  }
  std::string line = held.substr(start, end - start);
  start = searched = end + 1;
  return line;
}

std::optional<std::string> LineBuffer::takeRest() {
  if (size() == 0) return std::nullopt;
  std::string rest = held.substr(start);
  held.clear();
  start = searched = 0;
  return rest;
}

void ServerLog::append(std::string_view bytes) {
  buffer.append(bytes);
  while (auto line = buffer.takeLine()) take(std::move(*line));
  if (buffer.size() > longestLogLine) finish();
}

void ServerLog::finish() {
  if (auto rest = buffer.takeRest()) take(std::move(*rest));
}

void ServerLog::take(std::string line) {
  if (forward) forward(line);
  if (line.size() > longestLogLineKept) line.resize(longestLogLineKept);
  kept.push_back(std::move(line));
  if (kept.size() > linesKept) kept.pop_front();
}

ServerProcess::ServerProcess(const fs::path& program, ServerLog& log, Interruption& interruption,
                             std::size_t longestLine)
    : log(log), interruption(interruption), longestLine(longestLine), child(startServer(program)) {}

ServerProcess::~ServerProcess() {
  try {
    close();
  } catch (...) {
    // Nobody is left to show the log to. The server is killed with its ChildProcess.
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
    // That is asked before they are looked into: then they hold all that the server has said.
    const bool hasEnded = child.hasEnded();
    const bool idle = !exchange(std::min(deadline, after(endCheckInterval)));
    if (idle && hasEnded) reportEnd();
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
  if (!waitForEnd(exitTimeout)) {
    throw ServerEnded("the server closed its standard output without ending");
  }
  throw ServerEnded("the server " + child.ending());
}

void ServerProcess::close() {
  const milliseconds timeout = interruption.happened() ? exitTimeoutWhenInterrupted : exitTimeout;
  child.input.close();
  for (const int signal : {0, SIGTERM, SIGKILL}) {
    if (signal != 0) child.signal(signal);
    if (waitForEnd(timeout)) break;
  }
  log.finish();
}

/// Keeps reading, so that a server with more to say is not held up by a full pipe. Its messages
/// interest nobody any more.
bool ServerProcess::waitForEnd(milliseconds timeout) {
  const Deadline deadline = after(timeout);
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

}  // namespace corvane::ctl
