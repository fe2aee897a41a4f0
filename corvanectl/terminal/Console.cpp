#include "corvanectl/terminal/Console.h"

#include <cstdlib>

#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

namespace {

bool canRedraw(const TextStream& stream) {
  const char* terminal = std::getenv("TERM");
  return stream.isTerminal() && terminal && std::string_view(terminal) != "dumb";
}

}  // namespace

Console::Console(Interruption& interruption, int output, int errors)
    : output(output, interruption), errors(errors, interruption) {}

void Console::print(std::string_view text) {
  printOn(output, text);
}

void Console::complain(std::string_view text) {
  printOn(errors, "corvanectl: " + oneLine(text) + "\n");
}

void Console::printError(std::string_view text) {
  printOn(errors, text);
}

std::optional<std::size_t> Console::terminalColumns() const {
  if (!output.isTerminal()) return std::nullopt;
  return output.columns();
}

void Console::startProgress(ProgressPlace place) {
  const bool withResults = place == ProgressPlace::withResults;
  TextStream& stream = withResults ? output : errors;
  const ProgressStyle otherwise = withResults ? ProgressStyle::lines : ProgressStyle::none;
  line.emplace(stream, canRedraw(stream) ? ProgressStyle::live : otherwise);
}

void Console::progress(std::string_view message) {
  if (line) line->show(message);
}

void Console::endProgress() {
  if (line) line->erase();
  line.reset();
}

void Console::printOn(TextStream& stream, std::string_view text) {
  if (line) line->erase();
  stream.write(text);
  if (line && text.ends_with('\n')) line->redraw();
}

}  // namespace corvane
