#include "corvane_mcp/server/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace corvane {

FileDescriptor claimStandardOutput() {
  // A stream that is closed would be given to the next file opened. The lowest free number is taken
  // first, so filling from 0 up is enough.
  while (true) {
    FileDescriptor nowhere(::open("/dev/null", O_RDWR | O_CLOEXEC));
    if (nowhere.get() > STDERR_FILENO || !nowhere.isOpen()) break;
    ::fcntl(nowhere.release(), F_SETFD, 0);
  }
  FileDescriptor output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  ::dup2(STDERR_FILENO, STDOUT_FILENO);
  return output;
}

}  // namespace corvane
