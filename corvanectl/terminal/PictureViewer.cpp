#include "corvanectl/terminal/PictureViewer.h"

#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include "corvanectl/system/ChildProcess.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

constexpr Seconds endPollInterval{0.005};

/// What a viewer that was killed may have left behind on the screen: an unfinished control string,
/// a colour, half a row.
constexpr std::string_view tidyScreen = "\033\\\033[m\r\033[K";

/// Puts a terminal back into the mode it was found in. A viewer that asks the terminal what it can
/// show does so in raw mode, and may be killed in it.
class TerminalModeGuard {
 public:
  explicit TerminalModeGuard(int terminal)
      : terminal(terminal), known(::tcgetattr(terminal, &mode) == 0) {}
  TerminalModeGuard(const TerminalModeGuard&) = delete;
  TerminalModeGuard& operator=(const TerminalModeGuard&) = delete;
  ~TerminalModeGuard() {
    if (known) ::tcsetattr(terminal, TCSANOW, &mode);
  }

 private:
  int terminal;
  termios mode{};
  bool known;
};

/// A file that only this user can read, gone at the end of the object's life.
class PrivateFile {
 public:
  /// Throws std::system_error.
  explicit PrivateFile(std::string_view contents) {
    std::string pattern = fs::temp_directory_path() / "corvanectl-XXXXXX";
    const FileDescriptor created(::mkstemp(pattern.data()));
    if (!created.isOpen()) throw std::system_error(errno, std::generic_category(), pattern);
    path = pattern;
    try {
      std::ofstream file;
      file.exceptions(std::ios::failbit | std::ios::badbit);
      file.open(path, std::ios::binary);
      file << contents << std::flush;
    } catch (...) {
      ::unlink(path.c_str());
      throw;
    }
  }
  PrivateFile(const PrivateFile&) = delete;
  PrivateFile& operator=(const PrivateFile&) = delete;
  ~PrivateFile() { ::unlink(path.c_str()); }

  fs::path path;
};

/// The most that a picture may take: its lines fit beside it, and two pictures on a tall terminal.
std::string sizeOption(TerminalSize terminal) {
  constexpr std::size_t rowsBeside = 3;
  constexpr std::size_t mostRows = 40;
  const std::size_t rows =
      std::clamp<std::size_t>(terminal.rows - std::min(terminal.rows, rowsBeside), 1, mostRows);
  return "--size=" + std::to_string(terminal.columns) + "x" + std::to_string(rows);
}

}  // namespace

bool PictureViewer::hasScreen() const {
  const TextStream& screen = console.standardOutput();
  if (!usesColor(ColorChoice::automatic, screen)) return false;
  // A program in the background would be stopped for asking its terminal anything.
  const pid_t foreground = ::tcgetpgrp(screen.file());
  return foreground < 0 || foreground == ::getpgrp();
}

bool PictureViewer::canShow() const {
  return hasScreen() && !stuck && findProgram("chafa", searchPath());
}

void PictureViewer::showFile(const fs::path& file) {
  if (const auto chafa = findChafa()) run(*chafa, file);
}

void PictureViewer::showBytes(std::string_view bytes) {
  const auto chafa = findChafa();
  if (!chafa) return;
  std::optional<PrivateFile> file;
  try {
    file.emplace(bytes);
  } catch (const std::system_error&) {
    // There is no place to look at it from.
    return;
  }
  run(*chafa, file->path);
}

std::optional<fs::path> PictureViewer::findChafa() {
  if (stuck) return std::nullopt;
  auto chafa = findProgram("chafa", searchPath());
  if (!chafa && !std::exchange(hinted, true)) {
    console.complain("install chafa to see pictures here");
  }
  return chafa;
}

void PictureViewer::run(const fs::path& chafa, const fs::path& file) {
  const TextStream& screen = console.standardOutput();
  const TerminalModeGuard guard(screen.file());
  const Deadline deadline = after(timeout);
  try {
    auto viewer = ChildProcess::startShowing(
        chafa, {"--animate=off", sizeOption(screen.size()), "--", file.native()}, screen.file());
    while (!viewer.hasEnded() && !hasPassed(deadline)) {
      interruption.wait({}, after(endPollInterval));
    }
    stuck = !viewer.hasEnded();
    if (!stuck && !viewer.endedBySignal()) return;
  } catch (const std::system_error&) {
    // It could not be started.
    return;
  }
  console.print(tidyScreen);
}

}  // namespace corvane::ctl
