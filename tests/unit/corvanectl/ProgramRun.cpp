#include "ProgramRun.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

#include "CorvaneCore/files/Files.h"
#include "FakeServerScript.h"

extern char** environ;

namespace corvane::testing {

namespace {

void redirect(int stream, const std::filesystem::path& file, int flags) {
  const int descriptor = ::open(file.c_str(), flags, 0600);
  if (descriptor < 0) ::_exit(127);
  ::dup2(descriptor, stream);
  ::close(descriptor);
}

}  // namespace

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

ProgramRun runCorvanectl(const std::vector<std::string>& arguments, std::string_view input,
                         std::vector<std::string> environment, const std::string& program) {
  const TemporaryDirectory directory;
  const auto inputFile = directory.path() / "input";
  const auto outputFile = directory.path() / "output";
  const auto errorsFile = directory.path() / "errors";
  writeFileWhole(inputFile, input);
  const pid_t child = ::fork();
  if (child == 0) {
    redirect(STDIN_FILENO, inputFile, O_RDONLY);
    redirect(STDOUT_FILENO, outputFile, O_WRONLY | O_CREAT);
    redirect(STDERR_FILENO, errorsFile, O_WRONLY | O_CREAT);
    becomeCorvanectl(arguments, std::move(environment), program);
  }
  const int status = waitForStatus(child);
  constexpr std::size_t largestOutput = std::size_t{1} << 30;
  return {status, readFile(outputFile, largestOutput), readFile(errorsFile)};
}

ProgramRun runWithFakeServer(std::vector<std::string> arguments, std::string_view input) {
  // A script has no workspace to check names in.
  if (arguments.front() == "run") arguments.emplace_back("--unchecked");
  arguments.insert(arguments.begin(), {"--server", FakeServerScript::program()});
  return runCorvanectl(arguments, input);
}

int waitForStatus(int processId) {
  int status = 0;
  ::waitpid(processId, &status, 0);
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

void becomeCorvanectl(const std::vector<std::string>& arguments,
                      std::vector<std::string> environment, const std::string& program) {
  std::vector<std::string> words{program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const auto pointers = pointersTo(words);
  const auto variables = pointersTo(environment);
  ::execve(program.c_str(), pointers.data(), environment.empty() ? environ : variables.data());
  ::_exit(127);
}

Pseudoterminal::Pseudoterminal(unsigned short columns)
    : keyboard(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  if (!keyboard.isOpen() || ::grantpt(keyboard.get()) != 0 || ::unlockpt(keyboard.get()) != 0) {
    throw std::runtime_error("no pseudoterminal");
  }
  terminal = FileDescriptor(::open(::ptsname(keyboard.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
  resize(columns);
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

std::string Pseudoterminal::readPast(std::string_view end) {
  while (shown.find(end, taken) == std::string::npos && readMore()) continue;
  const std::size_t found = std::min(shown.find(end, taken), shown.size());
  std::string text = shown.substr(taken, found - taken);
  taken = std::min(found + end.size(), shown.size());
  return text;
}

void Pseudoterminal::resize(unsigned short columns) {
  winsize size{};
  size.ws_row = 24;
  size.ws_col = columns;
  ::ioctl(keyboard.get(), TIOCSWINSZ, &size);
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

}  // namespace corvane::testing
