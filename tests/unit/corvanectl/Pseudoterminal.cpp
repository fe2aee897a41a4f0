#include "Pseudoterminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

#include "ProgramRun.h"

namespace corvane {

Pseudoterminal::Pseudoterminal(unsigned short columns)
    : keyboard(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (!keyboard.isOpen() || ::grantpt(keyboard.get()) != 0 || ::unlockpt(keyboard.get()) != 0) {
    throw std::runtime_error("no pseudoterminal");
  }
  terminal = FileDescriptor(::open(::ptsname(keyboard.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  winsize size{};
  size.ws_row = 24;
  size.ws_col = columns;
  ::ioctl(terminal.get(), TIOCSWINSZ, &size);
}

FileDescriptor Pseudoterminal::anotherSide() const {
  return FileDescriptor(::fcntl(terminal.get(), F_DUPFD_CLOEXEC, 0));
}

int Pseudoterminal::start(const std::vector<std::string>& arguments) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::setsid();
    ::ioctl(terminal.get(), TIOCSCTTY, 0);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      ::dup2(terminal.get(), stream);
    }
    ::setenv("TERM", kind.c_str(), 1);
    becomeCorvanectl(arguments);
  }
  terminal.close();
  return child;
}

void Pseudoterminal::type(std::string_view keys) {
  if (::write(keyboard.get(), keys.data(), keys.size()) < 0)
    throw std::runtime_error("no keyboard");
}

const std::string& Pseudoterminal::readUntil(std::string_view text) {
  while (shown.find(text) == std::string::npos && readMore()) continue;
  return shown;
}

const std::string& Pseudoterminal::readAll() {
  while (readMore()) continue;
  return shown;
}

bool Pseudoterminal::readMore() {
  std::array<char, 4096> chunk;
  const ssize_t count = ::read(keyboard.get(), chunk.data(), chunk.size());
  if (count > 0) shown.append(chunk.data(), static_cast<std::size_t>(count));
  return count > 0;
}

bool hasUsualModes(const FileDescriptor& terminalSide) {
  termios modes{};
  if (::tcgetattr(terminalSide.get(), &modes) != 0) throw std::runtime_error("no terminal");
  const tcflag_t usual = ICANON | ECHO | ISIG;
  return (modes.c_lflag & usual) == usual && modes.c_cc[VSUSP] != _POSIX_VDISABLE;
}

int unreadInput(const FileDescriptor& terminalSide) {
  termios modes{};
  ::tcgetattr(terminalSide.get(), &modes);
  // Else only whole lines would count.
  modes.c_lflag &= ~static_cast<tcflag_t>(ICANON);
  ::tcsetattr(terminalSide.get(), TCSANOW, &modes);
  int count = 0;
  ::ioctl(terminalSide.get(), FIONREAD, &count);
  return count;
}

}  // namespace corvane
