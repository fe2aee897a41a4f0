#pragma once

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>

#include "CorvaneCore/files/Files.h"

namespace corvane::testing {

/// A fresh pipe.
struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;

  Pipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
    reading = FileDescriptor(ends[0]);
    writing = FileDescriptor(ends[1]);
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  }
};

/// Two sockets connected to each other, each for reading and writing.
struct SocketPair {
  FileDescriptor ours;
  FileDescriptor theirs;

  SocketPair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) != 0) {
      throw std::system_error(errno, std::generic_category(), "socketpair");
    }
    ours = FileDescriptor(ends[0]);
    theirs = FileDescriptor(ends[1]);
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
  }
};

inline void makeNonBlocking(int descriptor) {
  ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) | O_NONBLOCK);
}

/// Writes bytes that are known to fit.
inline void writeAll(int descriptor, std::string_view bytes) {
  if (::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
    throw std::system_error(errno, std::generic_category(), "write");
  }
}

/// Reads until the other side closes.
[[nodiscard]] inline std::string readToEnd(int descriptor) {
  std::string text;
  std::array<char, 4096> chunk;
  ssize_t count = 0;
  while ((count = ::read(descriptor, chunk.data(), chunk.size())) > 0) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace corvane::testing
