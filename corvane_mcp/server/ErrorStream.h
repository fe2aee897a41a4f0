#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace corvane {

/// Standard error as the log uses it: whole lines in their order, each in one write where the
/// system allows it. A reader that keeps reading, however slowly, gets every line. One that has
/// stopped holds a writer up for a moment, once; from then on lines are dropped, never a part of
/// one, until it reads again. Used by one thread at a time.
class ErrorStream {
 public:
  /// `patience` is how long a reader may take for the next piece before it counts as stopped.
  ErrorStream(int descriptor, std::chrono::milliseconds patience);

  /// `line` ends with its line feed. Never fails: a reader that is gone gets nothing.
  void write(std::string_view line);

 private:
  /// Takes what gets written off the front of `text`; false when the reader has stopped before the
  /// end.
  [[nodiscard]] bool writeAll(std::string_view& text);
  /// How much can be written now without waiting for the reader.
  [[nodiscard]] std::size_t room(std::size_t wanted) const;

  int descriptor;
  std::chrono::milliseconds patience;
  bool readerHasStopped = false;
  /// The rest of the line that the reader stopped in.
  std::string unfinished;
};

}  // namespace corvane
