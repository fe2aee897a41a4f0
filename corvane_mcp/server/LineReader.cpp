#include "corvane_mcp/server/LineReader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace corvane {

namespace {

constexpr std::size_t chunkSize = std::size_t{64} << 10;

}  // namespace

std::optional<LineReader::Line> LineReader::nextBuffered() {
  const std::string_view read = std::string_view(buffer).substr(0, filled);
  const std::size_t end = read.find('\n', searched);
  if (end == std::string_view::npos) {
    searched = filled;
    if (searched - taken > limit) {
      skipping = true;
      taken = searched;
    }
    return std::nullopt;
  }
  Line line{read.substr(taken, end - taken)};
  if (skipping || line.text.size() > limit) line = {{}, true};
  skipping = false;
  taken = searched = end + 1;
  return line;
}

bool LineReader::readMore() {
  dropTaken();
  if (buffer.size() - filled < chunkSize) buffer.resize(std::max(2 * filled, 2 * chunkSize));
  ssize_t count = 0;
  while ((count = ::read(input, buffer.data() + filled, buffer.size() - filled)) < 0) {
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      pollfd ready{input, POLLIN, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return false;
    }
  }
  filled += static_cast<std::size_t>(count);
  return count > 0;
}

void LineReader::dropTaken() {
  if (taken > 0) std::memmove(buffer.data(), buffer.data() + taken, filled - taken);
  filled -= taken;
  searched -= taken;
  taken = 0;
  // A buffer that one huge line needed is given back.
  if (buffer.size() > 16 * chunkSize && filled < chunkSize) {
    buffer.resize(2 * chunkSize);
    buffer.shrink_to_fit();
  }
}

}  // namespace corvane
