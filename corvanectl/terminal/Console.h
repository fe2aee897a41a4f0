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

/// One line of a terminal that is drawn over and over, cut to the terminal's width. The cursor
/// stays on it until it is erased.
class LiveLine {
 public:
  /// `stream` outlives the line and can be redrawn.
  explicit LiveLine(TextStream& stream) : stream(&stream) {}

  /// Draws the line unless it is what stands there already; an empty one is no line.
  void show(std::string_view text);
  /// Leaves the cursor at the beginning of an empty line, when the line is drawn.
  void erase();
  /// Draws an erased line again.
  void redraw();

 private:
  TextStream* stream;
  std::string shown;
  /// How many columns the text takes that is drawn, and how many the terminal had.
  std::size_t drawnColumns = 0;
  std::size_t screenColumns = 0;
  bool drawn = false;
};

/// Where progress may go: among the results on standard output, or only beside them.
enum class ProgressPlace { withResults, besideResults };

/// When to use colours: where they can be seen and nobody has asked for none, or as told.
enum class ColorChoice { automatic, always, never };

/// The one owner of standard output and standard error, so that results, messages and the live line
/// do not run into each other. Its operations throw what TextStream::write throws.
class Console {
 public:
  explicit Console(Interruption& interruption, int output = STDOUT_FILENO,
                   int errors = STDERR_FILENO);

  void print(std::string_view text);
  /// Prints on standard error, as "corvanectl: " and `text` on one line.
  void complain(std::string_view text);
  /// Prints on standard error just as it is.
  void printError(std::string_view text);
  /// Prints where progress goes.
  void printProgress(ProgressPlace place, std::string_view text);
  /// For asking what standard output is.
  [[nodiscard]] const TextStream& standardOutput() const { return output; }
  /// For asking what progress would be shown on.
  [[nodiscard]] const TextStream& progressStream(ProgressPlace place) const;

  /// Begins a live line, on a terminal that can be redrawn. It stays below whatever is printed.
  void startProgress(ProgressPlace place);
  /// Shows a line of text while there is a live line; nothing for an empty text.
  void progress(std::string_view text);
  /// Ends the live line and leaves the cursor where other text can begin.
  void endProgress();

 private:
  void printOn(TextStream& stream, std::string_view text);

  TextStream output;
  TextStream errors;
  std::optional<LiveLine> line;
};

/// Whether to use colours on `stream`, by `choice` and the variable NO_COLOR.
[[nodiscard]] bool usesColor(ColorChoice choice, const TextStream& stream);

}  // namespace corvane::ctl
