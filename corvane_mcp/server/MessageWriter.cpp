#include "corvane_mcp/server/MessageWriter.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {

namespace {

/// Queued messages leave at the latest when there are this many bytes of them.
constexpr std::size_t mostPending = std::size_t{64} << 10;

/// Writes everything, or gives up when the reader is gone.
void writeWhole(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(descriptor, text.data(), text.size());
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      // Whoever started this process may have made the description non-blocking.
      pollfd ready{descriptor, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace

void MessageWriter::send(std::string message) {
  message += '\n';
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
  writeWhole(output.get(), message);
}

void MessageWriter::sendWhileEncoding(const std::function<void(JsonSink&)>& encode) {
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
  bool begun = false;
  JsonWriter writer([&](std::string_view piece) {
    begun = true;
    writeWhole(output.get(), piece);
  });
  try {
    encode(writer);
  } catch (...) {
    if (begun) writeWhole(output.get(), "\n");
    throw;
  }
  writeWhole(output.get(), writer.take() + '\n');
}

void MessageWriter::queue(std::string_view message) {
  const std::scoped_lock lock(mutex);
  pending.append(message);
  pending += '\n';
  if (pending.size() >= mostPending) writePending();
}

void MessageWriter::flush() {
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
}

void MessageWriter::writePending() {
  writeWhole(output.get(), pending);
  if (pending.capacity() > 4 * mostPending) pending.shrink_to_fit();
  pending.clear();
}

}  // namespace corvane
