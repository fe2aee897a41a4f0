#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// The bytes of one picture, read from front to back a chunk at a time. Used by one thread at a
/// time.
class PictureInput {
 public:
  /// Reads `bytes`, which must outlive this.
  explicit PictureInput(std::span<const std::uint8_t> bytes) : ready(bytes) {}

  /// Opens the picture `name` in `folder`. Only plain names of regular files are opened: nothing
  /// outside `folder` is reached through separators, ".." or links, and a FIFO is not waited for.
  /// Throws PictureError.
  [[nodiscard]] static PictureInput open(const std::filesystem::path& folder,
                                         std::string_view name);

  /// The bytes that come next, at least one unless the picture is at its end. Valid until the next
  /// call. A file that cannot be read further ends there.
  [[nodiscard]] std::span<const std::uint8_t> peek() noexcept;

  /// Steps over the first `count` bytes of what peek() returned.
  void consume(std::size_t count) noexcept { ready = ready.subspan(count); }

 private:
  explicit PictureInput(FileDescriptor file);

  FileDescriptor file;
  std::vector<std::uint8_t> buffer;
  std::span<const std::uint8_t> ready;
  /// How much more of the file is read at most; a file that grows meanwhile ends some time.
  std::size_t allowance = 0;
};

}  // namespace corvane
