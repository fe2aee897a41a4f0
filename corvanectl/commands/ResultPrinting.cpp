#include "corvanectl/commands/ResultPrinting.h"

#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

std::string blockText(const ToolResult::Block& block, PictureOutput& pictures) {
  if (const auto* text = std::get_if<ToolResult::Text>(&block)) return text->text;
  if (const auto* image = std::get_if<ToolResult::Image>(&block)) return pictures.take(*image);
  return "[" + oneLine(std::get<ToolResult::Other>(block).type) + "]";
}

void printResult(const ToolResult& result, PictureOutput& pictures, Console& console) {
  std::string text;
  for (const ToolResult::Block& block : result.content) {
    if (&block != &result.content.front()) text += '\n';
    text += blockText(block, pictures);
  }
  if (console.terminalColumns() && !text.ends_with('\n')) text += '\n';
  console.print(text);
}

}  // namespace corvane
