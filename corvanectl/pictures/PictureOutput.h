#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "corvanectl/protocol/ToolResult.h"

namespace corvane {

/// Receives the pictures of a tool's answer and decides what the user sees of them.
class PictureOutput {
 public:
  /// With a directory, pictures are saved there as <tool>-<n> with the suffix of their kind, n
  /// counting from 1 and passing over files that exist.
  PictureOutput(std::optional<std::filesystem::path> directory, std::string_view tool);

  /// What stands for the picture in the output, without a line feed: the path it was saved to, or
  /// its kind and size. Throws FileError when it cannot be saved.
  [[nodiscard]] std::string take(const ToolResult::Image& image);

 private:
  [[nodiscard]] std::filesystem::path nextFile(std::string_view suffix);

  std::optional<std::filesystem::path> directory;
  std::string tool;
  int lastNumber = 0;
};

}  // namespace corvane
