#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/results/AnswerTexts.h"
#include "corvanectl/ExitStatus.h"
#include "corvanectl/protocol/McpClient.h"
#include "corvanectl/terminal/Console.h"
#include "corvanectl/terminal/PictureViewer.h"

namespace corvane::ctl {

/// The name of the file for a picture of a step: "<subject>-step-<step>-<moment>" and `suffix`.
/// `subject` is the test's name, `moment` "before" or "after".
[[nodiscard]] std::string pictureFileName(std::string_view subject, std::int64_t step,
                                          std::string_view moment, std::string_view suffix);

/// Turns the blocks of a tool's answers into output, and decides what becomes of their pictures.
class ResultOutput {
 public:
  /// With a directory, pictures are saved there. Those that follow the caption of a step are named
  /// for `subject` (a test, or the tool that was called), step and moment, others for `subject` and
  /// a number; no file that exists is written over. With a `viewer` they are shown, too, where it
  /// has a screen. Both `console` and `viewer` outlive this.
  ResultOutput(Console& console, std::string_view subject,
               std::optional<std::filesystem::path> directory, PictureViewer* viewer);

  /// Prints a tool's answer: texts exactly as they are, with a line feed between two blocks. On a
  /// terminal the output ends with a line feed in any case. Throws as `append` does.
  void print(const ToolResult& result);

  /// Appends what stands for a block to `text`, without a line feed at its end. For a picture that
  /// is the path it was saved to, or its kind and size. A picture that is shown comes above that;
  /// for it to be in its place, `text`, whole lines, is printed first and emptied. Throws FileError
  /// when it cannot be saved, Interrupted, and what Console throws.
  void append(const ToolResult::Block& block, std::string& text);

 private:
  void appendPicture(const ToolResult::Image& image, std::string& text);
  [[nodiscard]] std::filesystem::path nextFile(std::string_view suffix);

  Console& console;
  std::string subject;
  std::optional<std::filesystem::path> directory;
  PictureViewer* viewer;
  /// Of the pictures that come next; the moments of those that came have been taken off.
  std::optional<AnswerTexts::StepCaption> caption;
  int lastNumber = 0;
};

/// Whether the tool itself reported an error.
[[nodiscard]] inline ExitStatus exitStatusOf(const ToolResult& result) {
  return result.isError ? ExitStatus::failure : ExitStatus::success;
}

}  // namespace corvane::ctl
