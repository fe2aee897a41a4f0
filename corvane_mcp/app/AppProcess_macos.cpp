#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "corvane_mcp/app/AppProcess_macos.h"

extern char** environ;

namespace corvane {

namespace {

/// Starts a system helper with its standard streams on /dev/null and no other descriptor of ours.
pid_t spawnHelper(const std::vector<std::string>& command) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t all;
  sigfillset(&all);
  posix_spawnattr_setsigdefault(&attributes, &all);
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(
      &attributes, POSIX_SPAWN_CLOEXEC_DEFAULT | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

  std::vector<char*> arguments;
  for (const auto& argument : command) arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  pid_t child = -1;
  const int error =
      posix_spawn(&child, arguments.front(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category());
  return child;
}

/// The status that a child ended with; nothing when the system does not tell, as it does not to a
/// process that ignores SIGCHLD.
std::optional<int> waitFor(pid_t child) {
  int status = 0;
  pid_t ended = -1;
  while ((ended = ::waitpid(child, &status, 0)) < 0 && errno == EINTR) {
  }
  if (ended != child) return std::nullopt;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

bool AppProcess::isRunning(std::string_view text) {
  return isRunning(text, Helpers());
}

bool AppProcess::isRunning(std::string_view text, const Helpers& helpers) {
  try {
    return waitFor(spawnHelper({helpers.pgrep, "-f", std::string(text)})) == 0;
  } catch (const std::system_error&) {
    return false;
  }
}

void AppProcess::start(const std::filesystem::path& bundle) {
  start(bundle, Helpers());
}

void AppProcess::start(const std::filesystem::path& bundle, const Helpers& helpers) {
  const pid_t helper = spawnHelper({helpers.open, bundle});
  // Waited for only so that it does not stay behind as a zombie. The system itself starts an
  // application once, however often it is opened before it can be seen to run.
  std::thread([helper] { waitFor(helper); }).detach();
}

}  // namespace corvane
