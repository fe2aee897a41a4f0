#include "corvanectl/system/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <system_error>
#include <utility>

#ifdef __APPLE__
extern char** environ;  // no header of this platform declares it
#endif

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

/// What becomes of the standard streams of a program that is started.
class Streams {
 public:
  Streams() { ::posix_spawn_file_actions_init(&actions); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;
  ~Streams() { ::posix_spawn_file_actions_destroy(&actions); }

  void use(int file, int as) { ::posix_spawn_file_actions_adddup2(&actions, file, as); }
  void silence(int stream, int mode) { open(stream, "/dev/null", mode); }
  void open(int stream, const fs::path& file, int mode) {
    ::posix_spawn_file_actions_addopen(&actions, stream, file.c_str(), mode,
                                       fileMode(Access::userOnly));
  }
  [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions; }

 private:
  posix_spawn_file_actions_t actions{};
};

enum class ProcessGroup { shared, own, ownSession };

class Attributes {
 public:
  explicit Attributes(ProcessGroup group) {
    ::posix_spawnattr_init(&attributes);
    sigset_t defaults;
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&attributes, &defaults);
    int flags = POSIX_SPAWN_SETSIGDEF;
    if (group == ProcessGroup::own) flags |= POSIX_SPAWN_SETPGROUP;
    if (group == ProcessGroup::ownSession) flags |= POSIX_SPAWN_SETSID;
    ::posix_spawnattr_setflags(&attributes, static_cast<short>(flags));
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;
  ~Attributes() { ::posix_spawnattr_destroy(&attributes); }

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes; }

 private:
  posix_spawnattr_t attributes{};
};

pid_t spawn(const fs::path& program, std::vector<std::string> arguments, const Streams& streams,
            ProcessGroup group) {
  arguments.insert(arguments.begin(), program.native());
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (auto& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  pid_t id = 0;
  const int error = ::posix_spawn(&id, program.c_str(), streams.get(), Attributes(group).get(),
                                  pointers.data(), environ);
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "could not start " + program.native());
  }
  return id;
}

}  // namespace

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category(), "could not make a pipe");
  }
  for (const int end : ends) ::fcntl(end, F_SETFD, FD_CLOEXEC);
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

void setNonBlocking(const FileDescriptor& file) {
  ::fcntl(file.get(), F_SETFL, ::fcntl(file.get(), F_GETFL) | O_NONBLOCK);
}

std::string_view searchPath() {
  const char* path = std::getenv("PATH");
  return path ? path : "";
}

bool isProgram(const fs::path& path) {
  std::error_code unseen;
  return fs::is_regular_file(path, unseen) && ::access(path.c_str(), X_OK) == 0;
}

std::optional<fs::path> findProgram(std::string_view name, std::string_view searchPath) {
  while (!searchPath.empty()) {
    const std::string_view folder = searchPath.substr(0, searchPath.find(':'));
    searchPath.remove_prefix(std::min(folder.size() + 1, searchPath.size()));
    if (fs::path found = fs::path(folder) / name; !folder.empty() && isProgram(found)) return found;
  }
  return std::nullopt;
}

fs::path lastingPath(const fs::path& program, std::string_view searchPath) {
  std::error_code unseen;
  const auto named = findProgram(program.filename().native(), searchPath);
  const bool isSame = named && named->is_absolute() && fs::equivalent(*named, program, unseen);
  return isSame ? *named : fs::absolute(program).lexically_normal();
}

ChildProcess ChildProcess::startPiped(const fs::path& program) {
  Pipe input = makePipe();
  Pipe output = makePipe();
  Pipe errors = makePipe();
  Streams streams;
  streams.use(input.readEnd.get(), STDIN_FILENO);
  streams.use(output.writeEnd.get(), STDOUT_FILENO);
  streams.use(errors.writeEnd.get(), STDERR_FILENO);
  ChildProcess child(spawn(program, {}, streams, ProcessGroup::own));
  child.input = std::move(input.writeEnd);
  child.output = std::move(output.readEnd);
  child.errors = std::move(errors.readEnd);
  for (const auto* file : {&child.input, &child.output, &child.errors}) setNonBlocking(*file);
  return child;
}

ChildProcess ChildProcess::startShowing(const fs::path& program, std::vector<std::string> arguments,
                                        int output) {
  Streams streams;
  streams.use(output, STDOUT_FILENO);
  streams.silence(STDIN_FILENO, O_RDONLY);
  streams.silence(STDERR_FILENO, O_WRONLY);
  return ChildProcess(spawn(program, std::move(arguments), streams, ProcessGroup::shared));
}

ChildProcess ChildProcess::startAlone(const fs::path& program, std::vector<std::string> arguments,
                                      const std::optional<fs::path>& errors) {
  Streams streams;
  streams.silence(STDIN_FILENO, O_RDONLY);
  streams.silence(STDOUT_FILENO, O_WRONLY);
  if (errors) streams.open(STDERR_FILENO, *errors, O_WRONLY | O_CREAT | O_TRUNC);
  return ChildProcess(spawn(program, std::move(arguments), streams, ProcessGroup::ownSession));
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : input(std::move(other.input)),
      output(std::move(other.output)),
      errors(std::move(other.errors)),
      id(std::exchange(other.id, 0)),
      endStatus(other.endStatus) {}

ChildProcess::~ChildProcess() {
  if (id == 0 || endStatus) return;
  ::kill(id, SIGKILL);
  while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) continue;
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

bool ChildProcess::endedBySignal() const {
  const int status = endStatus.value_or(0);
  return WIFSIGNALED(status);
}

std::string ChildProcess::ending() const {
  const int status = endStatus.value_or(0);
  if (!WIFSIGNALED(status)) {
    return "ended with exit status " + std::to_string(WEXITSTATUS(status));
  }
  const int number = WTERMSIG(status);
  return "was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) + ")";
}

}  // namespace corvane::ctl
