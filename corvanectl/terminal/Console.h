#pragma once

#include <unistd.h>

#include <cstddef>
#include <optional>
#include <string_view>

#include "corvanectl/terminal/ProgressLine.h"
#include "corvanectl/terminal/TextStream.h"

namespace corvane {

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
  /// The descriptor of standard output, for asking a terminal there what it can show.
  [[nodiscard]] int outputFile() const { return output.file(); }
  /// The width of the terminal that is standard output; nothing when that is no terminal.
  [[nodiscard]] std::optional<std::size_t> terminalColumns() const;

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

}  // namespace corvane
