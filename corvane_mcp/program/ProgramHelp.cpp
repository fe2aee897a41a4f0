#include "corvane_mcp/program/ProgramHelp.h"

namespace corvane {

namespace {

std::string helpText() {
  std::string text = "Usage: corvane-mcp [OPTION]\n";
  for (const auto paragraph : ProgramHelp::description) text.append("\n").append(paragraph) += '\n';
  text.append("\n").append(ProgramHelp::advice).append("\n\nOptions:\n");
  constexpr std::size_t width = 11;
  for (const auto& option : ProgramHelp::options) {
    const std::string padding(width - option.name.size(), ' ');
    text.append("  ").append(option.name).append(padding).append(option.description) += '\n';
  }
  return text;
}

}  // namespace

std::optional<std::string> ProgramHelp::answerTo(std::string_view argument) {
  if (argument == "--version") return "corvane-mcp " CORVANE_VERSION "\n";
  if (argument == "--help") return helpText();
  return std::nullopt;
}

std::string ProgramHelp::wordsOnTerminal() {
  return "corvane-mcp: " + std::string(description.front()) +
         " It waits for a client, and there is none on a terminal. " + std::string(advice) +
         " Ctrl-D ends it.\n";
}

}  // namespace corvane
