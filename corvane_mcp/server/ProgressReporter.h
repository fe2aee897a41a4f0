#pragma once

#include <optional>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvane_mcp/server/MessageWriter.h"

namespace corvane {

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
