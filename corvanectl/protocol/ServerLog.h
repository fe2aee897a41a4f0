#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "corvanectl/protocol/LineBuffer.h"

namespace corvane {

/// What the server writes to its standard error. The last lines are kept, in case the server fails.
class ServerLog {
 public:
  using Forward = std::function<void(std::string_view line)>;

  /// `forward`, if there is one, is called with each line as it arrives.
  explicit ServerLog(Forward forward = {}) : forward(std::move(forward)) {}

  void append(std::string_view bytes);
  /// Takes what is left as a last line.
  void finish();

  /// At most `linesKept` lines, oldest first; long ones are cut.
  [[nodiscard]] const std::deque<std::string>& lastLines() const { return kept; }

  static constexpr std::size_t linesKept = 10;

 private:
  void take(std::string line);

  Forward forward;
  LineBuffer buffer;
  std::deque<std::string> kept;
};

}  // namespace corvane
