#include "corvanectl/terminal/TextStream.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <system_error>

namespace corvane {

void TextStream::write(std::string_view text) {
  while (!text.empty()) {
    std::array<pollfd, 1> files{{{descriptor, POLLOUT, 0}}};
    interruption->wait(files, never);
    // A pipe that is ready takes this much without waiting.
    const auto count =
        ::write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EPIPE) {
      throw OutputClosed();
    } else if (errno != EINTR && errno != EAGAIN) {
      throw std::system_error(errno, std::generic_category(), "could not write the output");
    }
  }
}

bool TextStream::isTerminal() const {
  return ::isatty(descriptor) == 1;
}

std::size_t TextStream::columns() const {
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

}  // namespace corvane
