#include "corvanectl/system/Pipe.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace corvane {

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

}  // namespace corvane
