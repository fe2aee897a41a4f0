#include "corvanectl/terminal/ProgressLine.h"

#include "corvanectl/terminal/DisplayText.h"

namespace corvane {

namespace {

constexpr std::string_view emptyLine = "\r\033[K";

}  // namespace

void ProgressLine::show(std::string_view message) {
  std::string line = oneLine(message);
  if (line == shown) return;
  shown = std::move(line);
  if (style == ProgressStyle::lines) stream->write(shown + "\n");
  redraw();
}

void ProgressLine::erase() {
  if (!drawn) return;
  drawn = false;
  stream->write(emptyLine);
}

void ProgressLine::redraw() {
  if (style != ProgressStyle::live || shown.empty()) return;
  drawn = true;
  // In its last column a terminal may already move on to the next line.
  const std::size_t columns = stream->columns() - 1;
  stream->write(std::string(emptyLine) + cutToColumns(shown, columns));
}

}  // namespace corvane
