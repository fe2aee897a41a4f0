#pragma once

#include <unistd.h>

#include <utility>

namespace corvane {

/// Owns one file descriptor and closes it at the end of its life.
class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int descriptor) : descriptor(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept
      : descriptor(std::exchange(other.descriptor, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor, other.descriptor);
    return *this;
  }
  ~FileDescriptor() { close(); }

  [[nodiscard]] bool isOpen() const { return descriptor >= 0; }
  [[nodiscard]] int get() const { return descriptor; }
  /// Gives the descriptor up without closing it.
  [[nodiscard]] int release() { return std::exchange(descriptor, -1); }
  /// Closes now; false when the system reports an error for what was written.
  bool close() { return descriptor < 0 || ::close(std::exchange(descriptor, -1)) == 0; }

 private:
  int descriptor = -1;
};

}  // namespace corvane
