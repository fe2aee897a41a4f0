#include "tests/support/ServerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <system_error>

#include "tests/support/Pipe.h"
#include "tests/support/Preload.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Timeout.h"

extern char** environ;

namespace corvane::testing {

namespace {

/// The environment of this process with a home of the test's own, and without a look at other
/// homes' processes.
std::vector<std::string> environmentFor(const ServerProcess::Setup& setup) {
  std::vector<std::string> variables;
  for (char** next = environ; *next; ++next) {
    const std::string_view variable = *next;
    if (!variable.starts_with("HOME=") && !variable.starts_with("CFFIXED_USER_HOME=") &&
        !variable.starts_with("XDG_DATA_HOME=") && !variable.starts_with("CORVANE_")) {
      variables.emplace_back(variable);
    }
  }
  for (auto& variable : homeVariables(setup.home)) variables.push_back(std::move(variable));
  variables.insert(variables.end(), setup.environment.begin(), setup.environment.end());
  const std::string preloading = std::string(preloadVariable) + "=";
  const auto preload = std::ranges::find_if(
      variables, [&](const std::string& each) { return each.starts_with(preloading); });
  if (preload == variables.end()) {
    variables.push_back(preloading + CORVANE_OWN_PROCESSES);
  } else {
    *preload += ":" CORVANE_OWN_PROCESSES;
  }
  return variables;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Runs in the forked child.
[[noreturn]] void becomeServer(const ServerProcess::Setup& setup, std::array<int, 3> streams,
                               char* const* arguments, char* const* environment) {
  // Out of the way of 0 to 2 first, so that no stream overwrites another.
  for (int& stream : streams) stream = ::fcntl(stream, F_DUPFD_CLOEXEC, 10);
  for (int number = 0; number < 3; ++number) {
    ::dup2(streams[static_cast<std::size_t>(number)], number);
  }
  for (const int number : setup.closedStreams) ::close(number);
  if (setup.umask) ::umask(*setup.umask);
  if (setup.fileSizeLimit) {
    const rlimit limit{*setup.fileSizeLimit, *setup.fileSizeLimit};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  // What this process ignores, or was started to ignore, is not the server's affair.
  for (const int signal : {SIGINT, SIGTERM, SIGPIPE, SIGXFSZ, SIGCHLD}) {
    std::signal(signal, SIG_DFL);
  }
  for (const int signal : setup.ignoredSignals) std::signal(signal, SIG_IGN);
  ::execve(setup.program.c_str(), arguments, environment);
  ::_exit(127);
}

}  // namespace

ServerProcess::ServerProcess(Setup setup) : readsErrors(setup.readsErrors) {
  // Writing to a server that has ended is an error to report, not the end of the test.
  std::signal(SIGPIPE, SIG_IGN);
  if (!setup.input.isOpen()) {
    Pipe pipe;
    setup.input = std::move(pipe.reading);
    input = std::move(pipe.writing);
    ::fcntl(input.get(), F_SETFL, O_NONBLOCK);
  }
  if (!setup.output.isOpen()) {
    Pipe pipe;
    setup.output = std::move(pipe.writing);
    output = std::move(pipe.reading);
  }
  if (!setup.errors.isOpen()) {
    Pipe pipe;
    setup.errors = std::move(pipe.writing);
    errorOutput = std::move(pipe.reading);
  }
  std::vector<std::string> arguments{setup.program.string()};
  auto environment = environmentFor(setup);
  const auto argumentPointers = pointersTo(arguments);
  const auto environmentPointers = pointersTo(environment);
  process = ::fork();
  if (process < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (process == 0) {
    becomeServer(setup, {setup.input.get(), setup.output.get(), setup.errors.get()},
                 argumentPointers.data(), environmentPointers.data());
  }
}

ServerProcess::~ServerProcess() {
  if (process < 0) return;
  ::kill(process, SIGKILL);
  ::waitpid(process, nullptr, 0);
}

void ServerProcess::send(std::string_view bytes) {
  const auto deadline = std::chrono::steady_clock::now() + testTimeout;
  while (!bytes.empty()) {
    const ssize_t count = ::write(input.get(), bytes.data(), bytes.size());
    if (count >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      takeIn(deadline, "the server reads its input", true);
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "writing to the server");
    }
  }
}

void ServerProcess::sendLine(std::string_view line) {
  send(std::string(line) += '\n');
}

bool ServerProcess::offerLine(std::string_view line) {
  try {
    sendLine(line);
    return true;
  } catch (const std::system_error& error) {
    if (error.code() != std::errc::broken_pipe) throw;
    return false;
  }
}

void ServerProcess::waitUntilTaken() {
  waitUntil("the server has read its input", [&] {
    int waiting = 0;
    ::ioctl(input.get(), FIONREAD, &waiting);
    return waiting == 0;
  });
}

void ServerProcess::closeInput() {
  input.close();
}

void ServerProcess::closeOutput() {
  output.close();
}

std::optional<std::string> ServerProcess::nextLine() {
  const auto deadline = std::chrono::steady_clock::now() + testTimeout;
  std::size_t searched = outputTaken;
  while (true) {
    const std::size_t end = outputText.find('\n', searched);
    if (end != std::string::npos) {
      std::string line = outputText.substr(outputTaken, end - outputTaken);
      outputTaken = end + 1;
      if (outputTaken == outputText.size()) {
        outputText.clear();
        outputTaken = 0;
      }
      return line;
    }
    searched = outputText.size();
    if (!output.isOpen()) {
      if (outputTaken == outputText.size()) return std::nullopt;
      throw std::runtime_error("the output ended inside a line: " + outputText.substr(outputTaken));
    }
    takeIn(deadline, "the server sends a line", false);
  }
}

std::string ServerProcess::readLine() {
  if (auto line = nextLine()) return std::move(*line);
  throw std::runtime_error("the output ended where a line was expected");
}

std::vector<std::string> ServerProcess::readToEnd() {
  std::vector<std::string> lines;
  while (auto line = nextLine()) lines.push_back(std::move(*line));
  return lines;
}

std::string ServerProcess::wait() {
  const auto deadline = std::chrono::steady_clock::now() + testTimeout;
  while (output.isOpen() || (errorOutput.isOpen() && readsErrors)) {
    takeIn(deadline, "the server ends", false);
  }
  int status = 0;
  waitUntil("the server has ended", [&] { return ::waitpid(process, &status, WNOHANG) != 0; });
  process = -1;
  if (WIFSIGNALED(status)) return "signal " + std::to_string(WTERMSIG(status));
  return "exit " + std::to_string(WEXITSTATUS(status));
}

void ServerProcess::takeIn(Deadline deadline, const char* purpose, bool forWriting) {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
  std::array<pollfd, 3> ready{{
      {output.get(), POLLIN, 0},
      {readsErrors ? errorOutput.get() : -1, POLLIN, 0},
      {forWriting ? input.get() : -1, POLLOUT, 0},
  }};
  const int count =
      ::poll(ready.data(), ready.size(), static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
  if (count == 0) {
    throw std::runtime_error(std::string("waited in vain until ") + purpose +
                             "; on standard error it has said:\n" + errorText);
  }
  if (ready[0].revents != 0) readSome(output, outputText);
  if (ready[1].revents != 0) readSome(errorOutput, errorText);
}

void ServerProcess::readSome(FileDescriptor& from, std::string& into) {
  std::array<char, 65536> chunk;
  const ssize_t count = ::read(from.get(), chunk.data(), chunk.size());
  if (count > 0) {
    into.append(chunk.data(), static_cast<std::size_t>(count));
  } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
    from.close();
  }
}

}  // namespace corvane::testing
