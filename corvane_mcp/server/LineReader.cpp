#include "corvane_mcp/server/LineReader.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace corvane {

namespace {

constexpr std::size_t chunkSize = std::size_t{64} << 10;

}  // namespace

std::optional<LineReader::Line> LineReader::nextBuffered() {
  const std::size_t end = buffer.find('\n', searched);
  if (end == std::string::npos) {
    searched = buffer.size();
    if (searched - taken > limit) {
      skipping = true;
      taken = searched;
    }
    return std::nullopt;
  }
  Line line{std::string_view(buffer).substr(taken, end - taken)};
  if (skipping || line.text.size() > limit) line = {{}, true};
  skipping = false;
  taken = searched = end + 1;
  return line;
}

bool LineReader::readMore() {
  dropTaken();
  const std::size_t length = buffer.size();
  buffer.resize(length + chunkSize);
  ssize_t count = 0;
  while ((count = ::read(input, buffer.data() + length, chunkSize)) < 0) {
    if (errno == EAGAIN || errno == EWOULDBLOCK) {
      pollfd ready{input, POLLIN, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      break;
    }
  }
  buffer.resize(length + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  return count > 0;
}

void LineReader::dropTaken() {
  buffer.erase(0, taken);
  searched -= taken;
  taken = 0;
  // Room that one huge line needed is given back.
  if (buffer.capacity() > 16 * chunkSize && buffer.size() < chunkSize) buffer.shrink_to_fit();
}

}  // namespace corvane
