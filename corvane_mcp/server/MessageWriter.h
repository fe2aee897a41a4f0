#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/json/AnyCodable.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {

/// The one owner of the protocol's output. Messages leave whole, each followed by a line feed, in
/// the order they were given. A reader that is slow holds the callers back, so memory stays
/// bounded; one that is gone is not noticed and what is written to it is dropped. May be called
/// from any thread.
class MessageWriter {
 public:
  explicit MessageWriter(FileDescriptor output) : output(std::move(output)) {}

  /// Writes a message, and those queued before it, now.
  void send(std::string message);
  /// The same for a message that may be too large to be kept twice: it leaves piece by piece while
  /// `encode` writes it. Lets through what `encode` throws; a message that has begun by then is
  /// broken off, and the next one stands on a line of its own.
  void sendWhileEncoding(const std::function<void(JsonSink&)>& encode);
  /// Keeps a message back to leave together with later ones; flush() must follow soon.
  void queue(std::string_view message);
  /// Writes what is queued. Where nothing is, nothing is waited for either: another thread may be
  /// held back by a slow reader.
  void flush();

 private:
  void writePending();

  std::mutex mutex;
  FileDescriptor output;
  std::string pending;
  /// Whether there is any, for those who do not hold the lock.
  std::atomic<bool> hasPending = false;
};

/// Sends progress notifications for one tool call to the client that asked for them.
class ProgressReporter {
 public:
  /// `token` goes out as it came, whatever its kind. `writer` outlives the reporter.
  ProgressReporter(MessageWriter& writer, AnyCodable token)
      : writer(&writer), token(std::move(token)) {}

  /// Sends one `notifications/progress`. May be called from any thread.
  void emit(double progress, std::optional<double> total, std::string_view message) const;

 private:
  MessageWriter* writer;
  AnyCodable token;
};

}  // namespace corvane
