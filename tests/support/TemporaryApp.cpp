#include "tests/support/TemporaryApp.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <fstream>
#include <string>
#include <system_error>

#include "tests/support/ProcessFacts.h"
#include "tests/support/Timeout.h"

extern char** environ;

namespace corvane::testing {

namespace fs = std::filesystem;

TemporaryApp::TemporaryApp(fs::path bundle) : folder(std::move(bundle)) {
  fs::create_directories(program().parent_path());
  fs::create_symlink(CORVANE_APP_DOUBLE, program());
}

TemporaryApp::~TemporaryApp() {
  const std::string path = program();
  std::error_code ignored;
  fs::remove_all(folder, ignored);
  for (const pid_t process : ProcessFacts::withCommandLine({path})) ::kill(process, SIGKILL);
  if (child > 0) ::waitpid(child, nullptr, 0);
  try {
    waitUntil("the app is gone", [&] { return ProcessFacts::withCommandLine({path}).empty(); });
  } catch (const std::exception&) {
    // A test that leaves an app behind would spoil those that come after it.
    std::terminate();
  }
}

fs::path TemporaryApp::program() const {
  return folder / "Contents" / "MacOS" / "Corvane";
}

void TemporaryApp::open() {
  std::string path = program();
  char* const arguments[] = {path.data(), nullptr};
  if (const int error = ::posix_spawn(&child, path.c_str(), nullptr, nullptr, arguments, environ)) {
    throw std::system_error(error, std::generic_category(), path);
  }
  static_cast<void>(waitUntilUp());
}

pid_t TemporaryApp::waitUntilUp() const {
  const fs::path note = program().parent_path() / "pid";
  waitUntil("the app is up", [&] { return fs::exists(note); });
  pid_t process = -1;
  std::ifstream(note) >> process;
  return process;
}

std::function<bool(std::string_view)> onlyProcessesOf(fs::path home) {
  return [home = std::move(home)](std::string_view text) {
    return !ProcessFacts::withCommandLine({text, home.native()}).empty();
  };
}

}  // namespace corvane::testing
