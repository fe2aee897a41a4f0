#include "corvanectl/trial/TrialServers.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "CorvaneCore/files/Files.h"
#include "CorvaneCore/files/Folder.h"
#include "CorvaneCore/json/JsonScalars.h"
#include "corvanectl/protocol/ServerProcess.h"

namespace corvane::ctl {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToStart(const fs::path& server) {
  throw ProtocolError("could not start " + displayPath(server) + ": " +
                      std::generic_category().message(errno));
}

bool tryLock(const FileDescriptor& file) {
  return ::flock(file.get(), LOCK_EX | LOCK_NB) == 0;
}

}  // namespace

void becomeServer(const TrialHome& home, const fs::path& server) {
  ensureDirectoryExists(home.servers());
  // Named for the process, and locked for as long as that lives: the descriptor goes over to it.
  const fs::path sign = home.servers() / std::to_string(::getpid());
  const FileDescriptor file(::open(sign.c_str(), O_RDWR | O_CREAT, fileMode(Access::userOnly)));
  if (!file.isOpen() || !tryLock(file)) failToStart(server);
  ::signal(SIGPIPE, SIG_DFL);
  ::execl(server.c_str(), home.serverInBundle().c_str(), nullptr);
  failToStart(server);
}

void stopServers(const TrialHome& home, Interruption& interruption, Deadline deadline) {
  for (const fs::path& sign : listVisible(home.servers())) {
    const FileDescriptor file(::open(sign.c_str(), O_RDWR | O_CLOEXEC));
    const auto process = parseInteger(sign.filename().native());
    if (!file.isOpen() || !process) continue;
    for (bool asked = false; !tryLock(file); asked = true) {
      if (!asked) ::kill(static_cast<pid_t>(*process), SIGTERM);
      if (hasPassed(deadline)) throw TrialFault("a server of the trial does not end");
      (void)interruption.wait({}, after(Seconds(0.02)));
    }
    ::unlink(sign.c_str());
  }
}

}  // namespace corvane::ctl
