#include "corvanectl/commands/ResultOutput.h"

#include <utility>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/text/Base64.h"
#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

std::string_view suffixFor(std::string_view mimeType) {
  if (mimeType == "image/jpeg") return ".jpg";
  if (mimeType == "image/png") return ".png";
  return ".img";
}

}  // namespace

ResultOutput::ResultOutput(Console& console, std::string_view tool,
                           std::optional<std::filesystem::path> directory, PictureViewer* viewer)
    : console(console),
      tool(fileNamePart(tool)),
      directory(std::move(directory)),
      viewer(viewer && viewer->hasScreen() ? viewer : nullptr) {}

void ResultOutput::print(const ToolResult& result) {
  std::string text;
  for (const ToolResult::Block& block : result.content) {
    if (&block != &result.content.front()) text += '\n';
    append(block, text);
  }
  if (console.standardOutput().isTerminal() && !text.ends_with('\n')) text += '\n';
  console.print(text);
}

void ResultOutput::append(const ToolResult::Block& block, std::string& text) {
  if (const auto* words = std::get_if<ToolResult::Text>(&block)) {
    text += words->text;
  } else if (const auto* image = std::get_if<ToolResult::Image>(&block)) {
    appendPicture(*image, text);
  } else {
    text += "[" + oneLine(std::get<ToolResult::Other>(block).type) + "]";
  }
}

void ResultOutput::appendPicture(const ToolResult::Image& image, std::string& text) {
  const std::string kind = oneLine(image.mimeType);
  const auto bytes = decodeBase64(image.data);
  if (!bytes) {
    text += "[" + kind + ", not readable: its data is no base64]";
    return;
  }
  std::optional<std::filesystem::path> file;
  if (directory) {
    file = nextFile(suffixFor(image.mimeType));
    writeFileWhole(*file, *bytes, Access::byUmask);
  }
  if (viewer) {
    console.print(std::exchange(text, {}));
    if (file) {
      viewer->showFile(*file);
    } else {
      viewer->showBytes(*bytes);
    }
  }
  text += file ? displayPath(*file) : "[" + kind + ", " + std::to_string(bytes->size()) + " bytes]";
}

std::filesystem::path ResultOutput::nextFile(std::string_view suffix) {
  while (true) {
    std::string name = tool + "-" + std::to_string(++lastNumber);
    std::filesystem::path file = *directory / name.append(suffix);
    if (!fileExists(file)) return file;
  }
}

}  // namespace corvane::ctl
