#include "corvane_mcp/server/MessageWriter.h"

#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonWriter.h"
#include "corvane_mcp/protocol/JsonRpc.h"
#include "corvane_mcp/protocol/McpRecords.h"
#include "corvane_mcp/server/StandardStreams.h"

namespace corvane {

namespace {

/// Queued messages leave at the latest when there are this many bytes of them.
constexpr std::size_t mostPending = std::size_t{64} << 10;

/// Whoever started this process may have made the output non-blocking; a slow reader is waited for
/// all the same.
void writeOut(const FileDescriptor& output, std::string_view text) {
  writeWhole(output.get(), text, WhenFull::wait);
}

}  // namespace

void MessageWriter::send(std::string message) {
  message += '\n';
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
  writeOut(output, message);
}

void MessageWriter::sendWhileEncoding(const std::function<void(JsonSink&)>& encode) {
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
  bool begun = false;
  JsonWriter writer([&](std::string_view piece) {
    begun = true;
    writeOut(output, piece);
  });
  try {
    encode(writer);
  } catch (...) {
    if (begun) writeOut(output, "\n");
    throw;
  }
  writeOut(output, writer.take() + '\n');
}

void MessageWriter::queue(std::string_view message) {
  const std::scoped_lock lock(mutex);
  pending.append(message);
  pending += '\n';
  hasPending = true;
  if (pending.size() >= mostPending) writePending();
}

void MessageWriter::flush() {
  if (!hasPending) return;
  const std::scoped_lock lock(mutex);
  if (!pending.empty()) writePending();
}

void MessageWriter::writePending() {
  writeOut(output, pending);
  pending.clear();
  hasPending = false;
  if (pending.capacity() > 4 * mostPending) pending.shrink_to_fit();
}

void ProgressReporter::emit(double progress, std::optional<double> total,
                            std::string_view message) const {
  const JSONRPCRequest notification{
      .jsonrpc = "2.0",
      .id = std::nullopt,
      .method = "notifications/progress",
      .params = encodeValue(ProgressParams{token, progress, total, std::string(message)})};
  try {
    // Unlike replies, these have always gone out with escaped slashes.
    writer->send(toJson(encodeValue(notification), SlashStyle::escaped));
  } catch (const EncodeError&) {
    // Progress that has no JSON form is dropped; the call goes on.
  }
}

}  // namespace corvane
