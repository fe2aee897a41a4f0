#pragma once

#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/system/Interruption.h"

namespace corvane::ctl {

/// In characters.
struct TerminalSize {
  std::size_t columns;
  std::size_t rows;
};

/// Whoever read what the program writes has gone. Ends the program, quietly, and so is no
/// std::exception.
struct OutputClosed {};

/// Standard output or standard error. Writes go out at once; a reader that stalls can be left with
/// Ctrl-C.
class TextStream {
 public:
  /// The descriptor and `interruption` stay open and alive as long as the stream.
  TextStream(int descriptor, Interruption& interruption)
      : descriptor(descriptor), interruption(&interruption) {}

  /// Throws OutputClosed, Interrupted, or std::system_error when the text cannot be written.
  void write(std::string_view text);

  [[nodiscard]] int file() const { return descriptor; }
  [[nodiscard]] bool isTerminal() const;
  /// Whether text can be drawn over there: false for a file, a pipe and a terminal that only
  /// prints.
  [[nodiscard]] bool canRedraw() const;
  /// The size of the terminal; 80 by 24 when it does not tell.
  [[nodiscard]] TerminalSize size() const;

 private:
  int descriptor;
  Interruption* interruption;
};

/// How progress is shown.
enum class ProgressStyle {
  /// One line of a terminal that is drawn over and over.
  live,
  /// Each message on a line of its own, unless it is the same as the one before.
  lines,
  none,
};

/// The progress of something that takes long. In live style the line is cut to the terminal's
/// width, and the cursor stays on it until it is erased.
class ProgressLine {
 public:
  /// `stream` outlives the line.
  ProgressLine(TextStream& stream, ProgressStyle style) : stream(&stream), style(style) {}

  void show(std::string_view message);
  /// Leaves the cursor at the beginning of an empty line, when the line is live and drawn.
  void erase();
  /// Draws an erased live line again.
  void redraw();

 private:
  TextStream* stream;
  ProgressStyle style;
  std::string shown;
  bool drawn = false;
};

/// Where progress may go: among the results on standard output, or only beside them.
enum class ProgressPlace { withResults, besideResults };

/// The one owner of standard output and standard error, so that results, messages and the progress
/// line do not run into each other. Its operations throw what TextStream::write throws.
class Console {
 public:
  explicit Console(Interruption& interruption, int output = STDOUT_FILENO,
                   int errors = STDERR_FILENO);

  void print(std::string_view text);
  /// Prints on standard error, as "corvanectl: " and `text` on one line.
  void complain(std::string_view text);
  /// Prints on standard error just as it is.
  void printError(std::string_view text);
  /// For asking what standard output is.
  [[nodiscard]] const TextStream& standardOutput() const { return output; }

  /// Begins to show progress: as a live line on a terminal, else line by line, but beside results
  /// only live or not at all.
  void startProgress(ProgressPlace place);
  /// Shows a message while progress is shown.
  void progress(std::string_view message);
  /// Ends progress and leaves the cursor where other text can begin.
  void endProgress();

 private:
  void printOn(TextStream& stream, std::string_view text);

  TextStream output;
  TextStream errors;
  std::optional<ProgressLine> line;
};

}  // namespace corvane::ctl
