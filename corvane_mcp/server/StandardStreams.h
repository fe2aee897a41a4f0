#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// Takes standard output for the protocol: the returned descriptor is the only way to it, and
/// whatever else is printed there from now on goes to standard error. Standard streams that the
/// process was started without lead nowhere. Called once, before anything is opened.
[[nodiscard]] FileDescriptor claimStandardOutput();

/// What becomes of the rest when a descriptor that does not block takes no more.
enum class WhenFull { wait, giveUp };

/// Writes all of `text`, or as much as is possible: what cannot be written is dropped. Waits as
/// long as it takes where the descriptor blocks.
void writeWhole(int descriptor, std::string_view text, WhenFull whenFull);

/// Standard error as the log uses it: whole lines in their order, each in one write where the
/// system allows it. A reader that keeps reading, however slowly, gets every line. One that has
/// stopped holds a writer up for a moment, once; from then on lines are dropped, never a part of
/// one, until it reads again. Used by one thread at a time.
class ErrorStream {
 public:
  /// A reader that takes longer than `timeout` for the next piece counts as stopped.
  ErrorStream(int descriptor, std::chrono::milliseconds timeout);

  /// `line` ends with its line feed. Never fails: a reader that is gone gets nothing.
  void write(std::string_view line);

 private:
  /// Takes what gets written off the front of `text`; false when the reader has stopped before the
  /// end.
  [[nodiscard]] bool writeAll(std::string_view& text);
  /// How much can be written now without waiting for the reader.
  [[nodiscard]] std::size_t writable(std::size_t wanted) const;

  int descriptor;
  std::chrono::milliseconds timeout;
  bool readerHasStopped = false;
  /// The rest of the line that the reader stopped in.
  std::string unfinished;
};

}  // namespace corvane
