#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Cuts an input into lines. The input may be a pipe, a socket, a terminal or a file, and is read
/// with blocking reads whatever its mode; its mode is never changed.
class LineReader {
 public:
  /// No message comes near this length; a longer line is reported and passed over.
  static constexpr std::size_t longestLine = std::size_t{256} << 20;

  struct Line {
    /// Without its line feed; valid until the next call.
    std::string_view text;
    /// The line was longer than the limit; `text` holds nothing of it.
    bool tooLong = false;
  };

  explicit LineReader(int input, std::size_t limit = longestLine) : input(input), limit(limit) {}

  /// The next complete line that has been read already, if any.
  [[nodiscard]] std::optional<Line> nextBuffered();
  /// Waits for more input. False at its end; what came after the last line feed is then lost.
  [[nodiscard]] bool readMore();

 private:
  void dropTaken();

  int input;
  std::size_t limit;
  /// The first `filled` bytes hold input. Only grows by what a line needs, so that
  /// reading costs no clearing of memory.
  std::string buffer;
  std::size_t filled = 0;
  /// How much has been handed out, and how much has been searched for a line feed.
  std::size_t taken = 0;
  std::size_t searched = 0;
  /// Whether the line being read is over the limit and is being passed over.
  bool skipping = false;
};

}  // namespace corvane
