#include "corvanectl/pictures/TerminalProbe.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <string_view>

#include "CorvaneCore/files/Files.h"
#include "corvanectl/terminal/TextStream.h"

namespace corvane {

namespace {

/// Its name and version, the size of a cell, and the device attributes, which every terminal gives.
/// Terminals that do not know a question of this form pass over it.
constexpr std::string_view questions = "\033[>q\033[16t\033[c";
/// The graphics question comes in a form that some old terminals print, so whatever stands in the
/// line then is erased.
constexpr std::string_view graphicsQuestion =
    "\033_Gi=31,s=1,v=1,a=q,t=d,f=24;AAAA\033\\\r\033[K\033[c";

/// Lets a terminal's answers be read as they come and unseen, for as long as this lives.
class UnseenInput {
 public:
  explicit UnseenInput(int terminal) : terminal(terminal) {
    changed = ::tcgetattr(terminal, &former) == 0;
    if (!changed) return;
    termios modes = former;
    modes.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    modes.c_cc[VMIN] = 1;
    modes.c_cc[VTIME] = 0;
    // Stopped now, the program would leave the terminal like this.
    modes.c_cc[VSUSP] = _POSIX_VDISABLE;
    changed = ::tcsetattr(terminal, TCSADRAIN, &modes) == 0;
  }
  UnseenInput(const UnseenInput&) = delete;
  UnseenInput& operator=(const UnseenInput&) = delete;
  ~UnseenInput() {
    if (changed) ::tcsetattr(terminal, TCSANOW, &former);
  }

  [[nodiscard]] bool isOn() const { return changed; }
  /// Throws away what has come and was not read.
  void drop() const { ::tcflush(terminal, TCIFLUSH); }

 private:
  int terminal;
  bool changed = false;
  termios former{};
};

bool isFront(std::string_view name, std::initializer_list<std::string_view> fronts) {
  return std::any_of(fronts.begin(), fronts.end(),
                     [name](std::string_view front) { return name.starts_with(front); });
}

std::string_view terminalKind() {
  const char* kind = std::getenv("TERM");
  return kind ? kind : "";
}

/// The terminal behind `output`, to write to and read from; not open when it cannot be asked.
FileDescriptor openTerminal(int output) {
  if (::isatty(output) != 1) return {};
  // These print what they are asked.
  const std::string_view kind = terminalKind();
  if (kind.empty() || kind == "dumb" || kind == "linux") return {};
  std::array<char, 256> name{};
  if (::ttyname_r(output, name.data(), name.size()) != 0) return {};
  FileDescriptor terminal(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
  // A program in the background would be stopped for reading.
  if (terminal.isOpen() && ::tcgetpgrp(terminal.get()) != ::getpgrp()) return {};
  return terminal;
}

/// Asks, and takes in the answers until the device attributes have come; false when they do not.
bool ask(std::string_view asked, int terminal, TerminalReplies& replies, Interruption& interruption,
         Seconds patience) {
  const Deadline end = after(patience);
  replies.expectAttributes();
  TextStream(terminal, interruption).write(asked);
  while (!replies.haveAttributes()) {
    std::array<pollfd, 1> files{{{terminal, POLLIN, 0}}};
    if (!interruption.wait(files, end)) return false;
    std::array<char, 1024> bytes;
    const auto count = ::read(terminal, bytes.data(), bytes.size());
    if (count <= 0) return false;
    replies.take({bytes.data(), static_cast<std::size_t>(count)});
  }
  return true;
}

GraphicsProtocol chooseProtocol(int terminal, TerminalReplies& replies, Interruption& interruption,
                                Seconds patience) {
  // They document that they take pictures in this form.
  if (isFront(replies.name(), {"iTerm2", "WezTerm", "mintty"})) return GraphicsProtocol::iterm2;
  const bool sixel = replies.knowsSixel();
  // Multiplexers keep the graphics question to themselves, and make a window title of it.
  const bool multiplexed =
      isFront(terminalKind(), {"screen", "tmux"}) || isFront(replies.name(), {"tmux", "screen"});
  if (!multiplexed && ask(graphicsQuestion, terminal, replies, interruption, patience) &&
      replies.knowsKittyGraphics()) {
    return GraphicsProtocol::kitty;
  }
  return sixel ? GraphicsProtocol::sixel : GraphicsProtocol::none;
}

void measure(int terminal, const TerminalReplies& replies, TerminalGraphics& graphics) {
  if (replies.cellSize()) graphics.cell = *replies.cellSize();
  winsize size{};
  if (::ioctl(terminal, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return;
  graphics.columns = size.ws_col;
  graphics.rows = size.ws_row;
  if (!replies.cellSize() && size.ws_xpixel >= size.ws_col && size.ws_ypixel >= size.ws_row) {
    graphics.cell = {size.ws_xpixel / size.ws_col, size.ws_ypixel / size.ws_row};
  }
}

}  // namespace

TerminalGraphics probeTerminal(int output, Interruption& interruption, Seconds patience) {
  TerminalGraphics graphics;
  const FileDescriptor terminal = openTerminal(output);
  if (!terminal.isOpen()) return graphics;
  const UnseenInput unseen(terminal.get());
  if (!unseen.isOn()) return graphics;
  TerminalReplies replies;
  if (!ask(questions, terminal.get(), replies, interruption, patience)) {
    unseen.drop();
    return graphics;
  }
  graphics.protocol = chooseProtocol(terminal.get(), replies, interruption, patience);
  measure(terminal.get(), replies, graphics);
  return graphics;
}

}  // namespace corvane
