#include "corvanectl/commands/ResultOutput.h"

#include <algorithm>
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

std::string pictureFileName(std::string_view subject, std::int64_t step, std::string_view moment,
                            std::string_view suffix) {
  std::string end = "-step-" + std::to_string(step) + "-" + fileNamePart(moment);
  end += suffix;
  // Room for a number, should there be such a file.
  constexpr std::size_t roomForNumber = 12;
  const std::string name = fileNamePart(toValidUtf8(subject));
  const std::size_t taken = std::min(end.size() + roomForNumber, longestFileName);
  return std::string(shortenedTo(name, longestFileName - taken)) + end;
}

ResultOutput::ResultOutput(Console& console, std::string_view subject,
                           std::optional<std::filesystem::path> directory, PictureViewer* viewer)
    : console(console),
      subject(subject),
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
    caption = AnswerTexts::readStepCaption(words->text);
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

/// A file that there is not yet: named for the step and the moment that the caption tells, else by
/// a number.
std::filesystem::path ResultOutput::nextFile(std::string_view suffix) {
  if (caption && !caption->moments.empty()) {
    const std::string moment = caption->moments.front();
    caption->moments.erase(caption->moments.begin());
    const std::string name = pictureFileName(subject, caption->step, moment, {});
    std::filesystem::path file = *directory / (name + std::string(suffix));
    for (int number = 2; fileExists(file); ++number) {
      file.replace_filename(name + "-" + std::to_string(number) + std::string(suffix));
    }
    return file;
  }
  while (true) {
    std::string name = fileNamePart(toValidUtf8(subject)) + "-" + std::to_string(++lastNumber);
    std::filesystem::path file = *directory / name.append(suffix);
    if (!fileExists(file)) return file;
  }
}

}  // namespace corvane::ctl
