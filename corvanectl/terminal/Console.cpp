#include "corvanectl/terminal/Console.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>

#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

namespace {

constexpr std::string_view emptyLine = "\r\033[K";

}  // namespace

void TextStream::write(std::string_view text) {
  while (!text.empty()) {
    std::array<pollfd, 1> files{{{descriptor, POLLOUT, 0}}};
    interruption->wait(files, never);
    // A pipe that is ready takes this much without waiting.
    const auto count =
        ::write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
    if (count >= 0) {
      text.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno == EPIPE) {
      throw OutputClosed();
    } else if (errno != EINTR && errno != EAGAIN) {
      throw std::system_error(errno, std::generic_category(), "could not write the output");
    }
  }
}

bool TextStream::isTerminal() const {
  return ::isatty(descriptor) == 1;
}

bool TextStream::canRedraw() const {
  const char* kind = std::getenv("TERM");
  return isTerminal() && kind && std::string_view(kind) != "dumb";
}

TerminalSize TextStream::size() const {
  winsize size{};
  const bool known = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0;
  return {known && size.ws_col > 0 ? size.ws_col : 80U,
          known && size.ws_row > 0 ? size.ws_row : 24U};
}

void LiveLine::show(std::string_view text) {
  std::string line = oneLine(text);
  if (drawn && line == shown && stream->size().columns == screenColumns) return;
  // Before anything is drawn at a new width, what the old one has left is taken away.
  if (line.empty() || stream->size().columns != screenColumns) erase();
  shown = std::move(line);
  redraw();
}

void LiveLine::erase() {
  if (!drawn) return;
  drawn = false;
  const std::size_t columns = stream->size().columns;
  std::string text(1, '\r');
  // A terminal that has become narrow shows a line that was drawn before in several rows.
  if (drawnColumns > columns) {
    text += "\033[" + std::to_string((drawnColumns - 1) / columns) + "A\033[J";
  } else {
    text += "\033[K";
  }
  stream->write(text);
}

void LiveLine::redraw() {
  if (shown.empty()) return;
  drawn = true;
  screenColumns = stream->size().columns;
  // In its last column a terminal may already move on to the next line.
  const std::string text = cutToColumns(shown, screenColumns - 1);
  drawnColumns = countColumns(text);
  stream->write(std::string(emptyLine) + text);
}

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

void Console::printProgress(ProgressPlace place, std::string_view text) {
  printOn(place == ProgressPlace::withResults ? output : errors, text);
}

const TextStream& Console::progressStream(ProgressPlace place) const {
  return place == ProgressPlace::withResults ? output : errors;
}

void Console::startProgress(ProgressPlace place) {
  line.emplace(place == ProgressPlace::withResults ? output : errors);
}

void Console::progress(std::string_view text) {
  if (line) line->show(text);
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

bool usesColor(ColorChoice choice, const TextStream& stream) {
  if (choice != ColorChoice::automatic) return choice == ColorChoice::always;
  const char* refused = std::getenv("NO_COLOR");
  return stream.canRedraw() && (!refused || *refused == '\0');
}

}  // namespace corvane::ctl
