#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "CorvaneCore/files/Files.h"
#include "tests/support/TestFiles.h"

namespace corvane::testing {

/// Puts another descriptor in the place of standard output or error for a while.
class StandardStreamReplacement {
 public:
  StandardStreamReplacement(int stream, int replacement)
      : stream(stream), original(::fcntl(stream, F_DUPFD_CLOEXEC, 3)) {
    ::dup2(replacement, stream);
  }
  StandardStreamReplacement(const StandardStreamReplacement&) = delete;
  StandardStreamReplacement& operator=(const StandardStreamReplacement&) = delete;
  ~StandardStreamReplacement() { ::dup2(original.get(), stream); }

 private:
  const int stream;
  FileDescriptor original;
};

/// Takes what is written to standard output or error into a file for a while.
class StandardStreamCapture {
 public:
  StandardStreamCapture(int stream, std::filesystem::path into)
      : file(std::move(into)),
        descriptor(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600)),
        replacement(stream, descriptor.get()) {}

  /// What has been written so far.
  [[nodiscard]] std::string text() const { return TestFiles::read(file); }

 private:
  std::filesystem::path file;
  FileDescriptor descriptor;
  StandardStreamReplacement replacement;
};

}  // namespace corvane::testing
