#include "corvanectl/pictures/PictureOutput.h"

#include <algorithm>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/Base64.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

namespace {

/// The text as part of a file name: what could lead elsewhere becomes a dash.
std::string plainName(std::string_view text) {
  std::string part(text);
  std::replace_if(
      part.begin(), part.end(),
      [](char c) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                           (c >= '0' && c <= '9') || c == '_' || c == '-';
        return !plain;
      },
      '-');
  return part;
}

std::string_view suffixFor(std::string_view mimeType) {
  if (mimeType == "image/jpeg") return ".jpg";
  if (mimeType == "image/png") return ".png";
  return ".img";
}

}  // namespace

PictureOutput::PictureOutput(std::optional<std::filesystem::path> directory, std::string_view tool,
                             std::optional<InlinePictures> terminal)
    : directory(std::move(directory)), tool(plainName(tool)), terminal(terminal) {}

std::string PictureOutput::take(const ToolResult::Image& image) {
  const std::string kind = oneLine(image.mimeType);
  const auto bytes = decodeBase64(image.data);
  if (!bytes) return "[" + kind + ", not readable: its data is no base64]";
  const std::string line = directory
                               ? save(*bytes, suffixFor(image.mimeType))
                               : "[" + kind + ", " + std::to_string(bytes->size()) + " bytes]";
  const auto shown = terminal ? terminal->show(*bytes) : std::nullopt;
  return shown ? *shown + "\n" + line : line;
}

std::string PictureOutput::save(const std::string& bytes, std::string_view suffix) {
  const std::filesystem::path file = nextFile(suffix);
  writeFileWhole(file, bytes);
  return displayPath(file);
}

std::filesystem::path PictureOutput::nextFile(std::string_view suffix) {
  while (true) {
    std::string name = tool + "-" + std::to_string(++lastNumber);
    std::filesystem::path file = *directory / name.append(suffix);
    if (!fileExists(file)) return file;
  }
}

}  // namespace corvane
