#include "corvanectl/terminal/Console.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <system_error>

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
  const std::size_t columns = stream->size().columns - 1;
  stream->write(std::string(emptyLine) + cutToColumns(shown, columns));
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

void Console::startProgress(ProgressPlace place) {
  const bool withResults = place == ProgressPlace::withResults;
  TextStream& stream = withResults ? output : errors;
  const ProgressStyle otherwise = withResults ? ProgressStyle::lines : ProgressStyle::none;
  line.emplace(stream, stream.canRedraw() ? ProgressStyle::live : otherwise);
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

}  // namespace corvane::ctl
