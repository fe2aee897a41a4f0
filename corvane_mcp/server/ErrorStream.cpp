#include "corvane_mcp/server/ErrorStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace corvane {

ErrorStream::ErrorStream(int descriptor, std::chrono::milliseconds patience)
    : descriptor(descriptor), patience(patience) {}

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
    const int timeout = readerHasStopped ? 0 : static_cast<int>(patience.count());
    const int count = ::poll(&ready, 1, timeout);
    if (count < 0 && errno == EINTR) continue;
    if (count == 0) return false;
    const ssize_t written = ::write(descriptor, text.data(), room(text.size()));
    if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
    if (written <= 0) {
      text = {};
      break;
    }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::size_t ErrorStream::room(std::size_t wanted) const {
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
