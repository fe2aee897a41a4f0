#include "corvane_mcp/server/StandardStreams.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace corvane {

FileDescriptor claimStandardOutput() {
  // A stream that is closed would be given to the next file opened. The lowest free number is taken
  // first, so filling from 0 up is enough.
  while (true) {
    FileDescriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (nowhere.get() > STDERR_FILENO || !nowhere.isOpen()) break;
    ::fcntl(nowhere.release(), F_SETFD, 0);
  }
  FileDescriptor output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  return output;
}

void writeWhole(int descriptor, std::string_view text, WhenFull whenFull) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count > 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (count < 0 && errno == EINTR) {
      continue;
    } else if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) &&
               whenFull == WhenFull::wait) {
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else {
      return;
    }
  }
}

ErrorStream::ErrorStream(int descriptor, std::chrono::milliseconds timeout)
    : descriptor(descriptor), timeout(timeout) {}

void ErrorStream::write(std::string_view line) {
  if (!unfinished.empty()) {
    std::string_view rest = unfinished;
    readerHasStopped = !writeAll(rest);
    unfinished.erase(0, unfinished.size() - rest.size());
    if (readerHasStopped) return;
  }
  std::string_view rest = line;
  readerHasStopped = !writeAll(rest);
  if (rest.size() < line.size()) unfinished = rest;
}

bool ErrorStream::writeAll(std::string_view& text) {
  while (!text.empty()) {
    pollfd ready{descriptor, POLLOUT, 0};
    const int longest = readerHasStopped ? 0 : static_cast<int>(timeout.count());
    const int count = ::poll(&ready, 1, longest);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) return false;
    const ssize_t written = ::write(descriptor, text.data(), writable(text.size()));
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (written <= 0) {
      text = {};
      break;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::size_t ErrorStream::writable(std::size_t wanted) const {
  // What poll promises of a pipe.
  constexpr std::size_t promised = PIPE_BUF;
#ifdef F_GETPIPE_SZ
  int queued = 0;
  if (wanted > promised && ::ioctl(descriptor, FIONREAD, &queued) == 0 && queued == 0) {
    // An empty pipe takes all that it can hold.
    const int capacity = ::fcntl(descriptor, F_GETPIPE_SZ);
    if (capacity > 0) return std::min(wanted, static_cast<std::size_t>(capacity));
  }
#endif
  return std::min(wanted, promised);
}

}  // namespace corvane
