#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <optional>
#include <string>
#include <system_error>
#include <thread>

#include "CorvaneCore/files/Folder.h"
#include "corvane_mcp/app/AppProcess.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

/// The arguments of a process joined with blanks, from the system's file of them; empty when it is
/// gone or not ours to see.
std::string commandLine(const std::string& file) {
  const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  std::string arguments;
  std::array<char, 4096> chunk;
  ssize_t count = static_cast<ssize_t>(chunk.size());
  // Only the last read of such a file is short, which saves asking for its end.
  while (opened.isOpen() && count == static_cast<ssize_t>(chunk.size())) {
    count = ::read(opened.get(), chunk.data(), chunk.size());
    if (count > 0) arguments.append(chunk.data(), static_cast<std::size_t>(count));
  }
  std::replace(arguments.begin(), arguments.end(), '\0', ' ');
  return arguments;
}

/// The status that a child ended with; nothing when the system does not tell, as it does not to a
/// process that ignores SIGCHLD.
std::optional<int> waitFor(pid_t child) {
  int status = 0;
  pid_t ended = -1;
  while ((ended = ::waitpid(child, &status, 0)) < 0 && errno == EINTR) {
  }
  if (ended != child) return std::nullopt;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// What is told about an application while it starts: its process id or, less than zero, the reason
/// why it could not be started.
using News = int;

void tell(News news, int pipe) {
  [[maybe_unused]] const ssize_t told = ::write(pipe, &news, sizeof news);
}

/// Tells why the application could not be started, and ends.
[[noreturn]] void endWith(int reason, int pipe) {
  tell(-reason, pipe);
  ::_exit(1);
}

/// Runs in a fresh child of a process with threads, where only async-signal-safe calls are allowed.
[[noreturn]] void becomeApplication(const char* program, int pipe) {
  ::setsid();
  // A second fork, so that the application is nobody's child and is never waited for.
  const pid_t application = ::fork();
  if (application < 0) endWith(errno, pipe);
  if (application > 0) {
    tell(application, pipe);
    ::_exit(0);
  }

  struct sigaction defaultAction{};
  defaultAction.sa_handler = SIG_DFL;
  for (int signal = 1; signal < NSIG; ++signal) ::sigaction(signal, &defaultAction, nullptr);
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);

  [[maybe_unused]] const int moved = ::chdir("/");
  // The pipe closes with a successful start as well, which is how its reader learns of it.
  ::dup2(pipe, STDERR_FILENO + 1);
  pipe = STDERR_FILENO + 1;
  ::fcntl(pipe, F_SETFD, FD_CLOEXEC);
  const int nowhere = ::open("/dev/null", O_RDWR);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) ::dup2(nowhere, stream);
  const auto firstOther = static_cast<unsigned>(pipe) + 1;
  if (::syscall(SYS_close_range, firstOther, ~0U, 0) != 0) {
    const long limit = ::sysconf(_SC_OPEN_MAX);
    for (int other = pipe + 1; other < limit; ++other) ::close(other);
  }
  std::array<char*, 2> arguments{const_cast<char*>(program), nullptr};
  ::execv(program, arguments.data());
  endWith(errno, pipe);
}

/// The process id of the application that a child starts. Throws std::system_error when it could
/// not be started.
pid_t readNews(const FileDescriptor& pipe) {
  pid_t application = -1;
  while (true) {
    News news = 0;
    const ssize_t count = ::read(pipe.get(), &news, sizeof news);
    if (count < 0 && errno == EINTR) continue;
    if (count != static_cast<ssize_t>(sizeof news)) return application;
    if (news < 0) throw std::system_error(-news, std::generic_category());
    application = news;
  }
}

/// Returns when the system shows `program` in the process's command line, which it does a moment
/// after the pipe has closed, or when the process has ended. One that nobody reaps never seems to
/// end, and is not waited for for long.
void waitUntilShown(pid_t application, std::string_view program) {
  constexpr int attempts = 1000;
  const std::string folder = "/proc/" + std::to_string(application);
  for (int i = 0; i < attempts && fileExists(folder); ++i) {
    if (commandLine(folder + "/cmdline").find(program) != std::string::npos) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

}  // namespace

bool AppProcess::isRunning(std::string_view text) {
  Folder processes("/proc");
  std::string file;
  while (const auto entry = processes.next()) {
    if (entry->name.find_first_not_of("0123456789") != std::string_view::npos) continue;
    file.assign("/proc/").append(entry->name).append("/cmdline");
    if (commandLine(file).find(text) != std::string::npos) return true;
  }
  return false;
}

void AppProcess::start(const fs::path& bundle) {
  const std::string program = bundle / "Contents" / "MacOS" / "Corvane";
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  const FileDescriptor readEnd(ends[0]);
  FileDescriptor writeEnd(ends[1]);
  const pid_t child = ::fork();
  if (child < 0) throw std::system_error(errno, std::generic_category());
  if (child == 0) becomeApplication(program.c_str(), writeEnd.get());
  writeEnd.close();

  const auto status = waitFor(child);
  const pid_t application = readNews(readEnd);
  // Where the status is not told, the pipe has told that the application runs.
  if (status.value_or(0) != 0) {
    throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
  }
  waitUntilShown(application, program);
}

}  // namespace corvane
