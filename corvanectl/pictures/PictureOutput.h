#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/pictures/InlinePictures.h"
#include "corvanectl/protocol/ToolResult.h"

namespace corvane {

/// Receives the pictures of a tool's answer and decides what the user sees of them.
class PictureOutput {
 public:
  /// With a directory, pictures are saved there as <tool>-<n> with the suffix of their kind, n
  /// counting from 1 and passing over files that exist. With `terminal` they are shown there, too.
  PictureOutput(std::optional<std::filesystem::path> directory, std::string_view tool,
                std::optional<InlinePictures> terminal = std::nullopt);

  /// What stands for the picture in the output, without a line feed at its end: the path it was
  /// saved to, or its kind and size, below the picture itself where the terminal can show it.
  /// Output up to here ended with a line. Throws FileError when it cannot be saved, Interrupted.
  [[nodiscard]] std::string take(const ToolResult::Image& image);

 private:
  [[nodiscard]] std::string save(const std::string& bytes, std::string_view suffix);
  [[nodiscard]] std::filesystem::path nextFile(std::string_view suffix);

  std::optional<std::filesystem::path> directory;
  std::string tool;
  std::optional<InlinePictures> terminal;
  int lastNumber = 0;
};

}  // namespace corvane
