#include "corvanectl/protocol/ChildProcess.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "corvanectl/system/Pipe.h"

#ifdef __APPLE__
extern char** environ;  // no header of this platform declares it
#endif

namespace corvane {

namespace {

class FileActions {
 public:
  FileActions() { ::posix_spawn_file_actions_init(&actions); }
  FileActions(const FileActions&) = delete;
  FileActions& operator=(const FileActions&) = delete;
  ~FileActions() { ::posix_spawn_file_actions_destroy(&actions); }

  void use(const FileDescriptor& file, int as) {
    ::posix_spawn_file_actions_adddup2(&actions, file.get(), as);
  }
  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions; }

 private:
  posix_spawn_file_actions_t actions{};
};

class Attributes {
 public:
  Attributes() {
    ::posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    ::posix_spawnattr_setpgroup(&attributes, 0);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&attributes); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes; }

 private:
  posix_spawnattr_t attributes{};
};

}  // namespace

ChildProcess ChildProcess::start(const std::filesystem::path& program) {
  Pipe input = makePipe();
  Pipe output = makePipe();
  Pipe errors = makePipe();
  FileActions actions;
  actions.use(input.readEnd, STDIN_FILENO);
  actions.use(output.writeEnd, STDOUT_FILENO);
  actions.use(errors.writeEnd, STDERR_FILENO);
  const Attributes attributes;
  std::string name = program.native();
  const std::array<char*, 2> arguments{name.data(), nullptr};

  ChildProcess child;
  const int error = ::posix_spawn(&child.id, name.c_str(), actions.get(), attributes.get(),
                                  arguments.data(), environ);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "could not start " + name);
  }
  child.input = std::move(input.writeEnd);
  child.output = std::move(output.readEnd);
  child.errors = std::move(errors.readEnd);
  for (const auto* file : {&child.input, &child.output, &child.errors}) setNonBlocking(*file);
  return child;
}

bool ChildProcess::hasEnded() {
  if (endStatus) return true;
  int status = 0;
  const pid_t waited = ::waitpid(id, &status, WNOHANG);
  // Where this program was started with SIGCHLD ignored, the system keeps no statuses.
  if (waited == id || (waited < 0 && errno == ECHILD)) endStatus = status;
  return endStatus.has_value();
}

void ChildProcess::signal(int number) const {
  if (!endStatus) ::kill(id, number);
}

std::string ChildProcess::ending() const {
  const int status = endStatus.value_or(0);
  if (!WIFSIGNALED(status)) {
    return "ended with exit status " + std::to_string(WEXITSTATUS(status));
  }
  const int number = WTERMSIG(status);
  return "was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) + ")";
}

}  // namespace corvane
