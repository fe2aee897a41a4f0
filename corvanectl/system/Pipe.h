#pragma once

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// The two ends of a pipe; programs started later do not inherit them.
struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

/// Throws std::system_error.
[[nodiscard]] Pipe makePipe();

/// Lets reads and writes return at once instead of waiting.
void setNonBlocking(const FileDescriptor& file);

}  // namespace corvane
