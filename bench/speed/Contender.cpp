#include "bench/speed/Contender.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "bench/speed/Cores.h"
#include "tests/support/Pipe.h"
#include "tests/support/ProcessFacts.h"

namespace corvane::testing {

namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 20;

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Contender::Contender(Command command) : name(command.arguments.front()), buffer(chunkSize, '\0') {
  ::signal(SIGPIPE, SIG_IGN);
  Pipe toProgram;
  Pipe fromProgram;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, toProgram.reading.get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fromProgram.writing.get(), STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  const auto arguments = pointersTo(command.arguments);
  const auto environment = pointersTo(command.environment);
  std::optional<OneCore> inherited;
  if (command.core) inherited.emplace(*command.core);
  started = std::chrono::steady_clock::now();
  const int error = ::posix_spawn(&process, name.c_str(), &actions, nullptr, arguments.data(),
                                  environment.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "could not start " + name);
  }
  input = std::move(toProgram.writing);
  output = std::move(fromProgram.reading);
}

Contender::~Contender() {
  ::kill(process, SIGKILL);
  ::waitpid(process, nullptr, 0);
}

void Contender::send(std::string_view lines) {
  while (!lines.empty()) {
    const ssize_t count = ::write(input.get(), lines.data(), lines.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) failToTalk("writing to");
    lines.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string_view Contender::readLine() {
  std::size_t searched = taken;
  while (true) {
    const std::string_view read = std::string_view(buffer).substr(0, filled);
    const std::size_t end = read.find('\n', searched);
    if (end != std::string_view::npos) {
      const std::string_view line = read.substr(taken, end - taken);
      taken = end + 1;
      return line;
    }
    searched = filled - taken;
    readMore();
  }
}

std::string_view Contender::ask(std::string_view line, std::string_view expected) {
  send(line);
  const std::string_view reply = readLine();
  if (reply.find(expected) == std::string_view::npos) {
    throw std::runtime_error(name + " answered " + std::string(reply.substr(0, 2000)));
  }
  return reply;
}

void Contender::initialize() {
  ask(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"protocolVersion":"2025-06-18",)"
      R"("capabilities":{},"clientInfo":{"name":"speed-bench","version":"1.0.0"}}})"
      "\n",
      "protocolVersion");
  send("{\"jsonrpc\":\"2.0\",\"method\":\"notifications/initialized\"}\n");
}

void Contender::exchange(std::string_view lines, std::size_t replies) {
  const int flags = ::fcntl(input.get(), F_GETFL);
  ::fcntl(input.get(), F_SETFL, flags | O_NONBLOCK);
  std::array<char, std::size_t{1} << 16> chunk;
  while (replies > 0) {
    std::array<pollfd, 2> ready{
        {{output.get(), POLLIN, 0}, {lines.empty() ? -1 : input.get(), POLLOUT, 0}}};
    ::poll(ready.data(), ready.size(), -1);
    if (ready[1].revents != 0) {
      const ssize_t count = ::write(input.get(), lines.data(), lines.size());
      if (count < 0 && errno != EAGAIN && errno != EINTR) failToTalk("writing to");
      if (count > 0) lines.remove_prefix(static_cast<std::size_t>(count));
    }
    if (ready[0].revents != 0) {
      const ssize_t count = ::read(output.get(), chunk.data(), chunk.size());
      if (count <= 0) failToTalk("reading from");
      for (ssize_t i = 0; i < count; ++i) replies -= chunk[static_cast<std::size_t>(i)] == '\n';
    }
  }
  ::fcntl(input.get(), F_SETFL, flags);
}

std::size_t Contender::kilobytes(std::string_view figure) const {
  return std::stoul(ProcessFacts::status(process, figure));
}

std::chrono::nanoseconds Contender::processorTime() const {
  std::int64_t total = 0;
  const auto tasks = std::filesystem::path("/proc") / std::to_string(process) / "task";
  for (const auto& task : std::filesystem::directory_iterator(tasks)) {
    std::int64_t nanoseconds = 0;
    std::ifstream(task.path() / "schedstat") >> nanoseconds;
    total += nanoseconds;
  }
  return std::chrono::nanoseconds(total);
}

void Contender::readMore() {
  if (taken > 0) {
    std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(taken),
              buffer.begin() + static_cast<std::ptrdiff_t>(filled), buffer.begin());
    filled -= taken;
    taken = 0;
  }
  if (buffer.size() - filled < chunkSize / 2) buffer.resize(2 * buffer.size());
  const ssize_t count = ::read(output.get(), buffer.data() + filled, buffer.size() - filled);
  if (count < 0 && errno == EINTR) return;
  if (count <= 0) failToTalk("reading from");
  filled += static_cast<std::size_t>(count);
}

void Contender::failToTalk(const char* what) const {
  throw std::runtime_error(std::string(what) + " " + name + " failed");
}

}  // namespace corvane::testing
