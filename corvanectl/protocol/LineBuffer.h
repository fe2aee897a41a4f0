#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// Cuts a stream of bytes into lines. Each byte is looked at once, however the bytes arrive.
class LineBuffer {
 public:
  void append(std::string_view bytes);

  /// The next whole line, without its line feed; nothing until one is complete.
  [[nodiscard]] std::optional<std::string> takeLine();

  /// Takes the bytes after the last line feed as if one followed them; nothing when there are none.
  [[nodiscard]] std::optional<std::string> takeRest();

  /// How many bytes are held.
  [[nodiscard]] std::size_t size() const { return held.size() - start; }

 private:
  std::string held;
  /// Where the next line begins; what lies before it has been taken.
  std::size_t start = 0;
  /// No line feed lies between `start` and here.
  std::size_t searched = 0;
};

}  // namespace corvane
