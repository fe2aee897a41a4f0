#include "corvane_standin/program/Instance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <string>
#include <thread>

#include "CorvaneCore/files/Files.h"

namespace corvane::standin {

namespace {

namespace fs = std::filesystem;

std::error_code lastError() {
  return {errno, std::generic_category()};
}

bool isFileAt(const fs::path& path, int descriptor) {
  struct stat there{};
  struct stat held{};
  return ::stat(path.c_str(), &there) == 0 && ::fstat(descriptor, &held) == 0 &&
         there.st_dev == held.st_dev && there.st_ino == held.st_ino;
}

void writeProcessId(int descriptor, const fs::path& file) {
  const std::string id = std::to_string(::getpid()) + "\n";
  if (::ftruncate(descriptor, 0) != 0 ||
      ::pwrite(descriptor, id.data(), id.size(), 0) != static_cast<ssize_t>(id.size())) {
    throw FileError("write", file, lastError());
  }
}

/// The process that holds the lock on `file`; 0 when it has not written its id yet, nothing when
/// nobody holds the lock.
std::optional<pid_t> holderOf(const fs::path& file) {
  const FileDescriptor probe(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!probe.isOpen() || ::flock(probe.get(), LOCK_SH | LOCK_NB) == 0) return std::nullopt;
  std::array<char, 32> text{};
  const ssize_t length = ::pread(probe.get(), text.data(), text.size(), 0);
  pid_t holder = 0;
  if (length > 0) std::from_chars(text.data(), text.data() + length, holder);
  return holder;
}

constexpr int stopSignals[] = {SIGTERM, SIGINT, SIGHUP};

}  // namespace

std::optional<InstanceLock> InstanceLock::tryAcquire(const fs::path& file) {
  while (true) {
    FileDescriptor opened(
        ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, fileMode(Access::userOnly)));
    if (!opened.isOpen()) throw FileError("lock", file, lastError());
    if (::flock(opened.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) return std::nullopt;
      throw FileError("lock", file, lastError());
    }
    // Between opening and locking the file may have been deleted together with its home.
    if (!isFileAt(file, opened.get())) continue;
    writeProcessId(opened.get(), file);
    return InstanceLock(file, opened.release());
  }
}

bool InstanceLock::inPlace() const {
  return isFileAt(file, descriptor);
}

bool quitInstance(const fs::path& file, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  pid_t asked = 0;
  while (const auto holder = holderOf(file)) {
    if (*holder > 0 && *holder != asked) {
      if (::kill(*holder, SIGTERM) != 0 && errno != ESRCH) {
        throw FileError("quit the instance of", file, lastError());
      }
      asked = *holder;
    }
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

StopSignals::StopSignals() {
  // A parent that ignores SIGTERM would otherwise hand that on, and nothing could stop us.
  std::signal(SIGTERM, SIG_DFL);
  sigemptyset(&signals);
  for (const int signal : stopSignals) sigaddset(&signals, signal);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
}

bool StopSignals::arrived() const {
  sigset_t pending{};
  sigpending(&pending);
  for (const int signal : stopSignals) {
    if (sigismember(&pending, signal) == 1) return true;
  }
  return false;
}

}  // namespace corvane::standin
