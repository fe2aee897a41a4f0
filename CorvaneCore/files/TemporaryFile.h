#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// A file being written for its final place, in the same folder. Where the system can do it, it has
/// no name until it is whole, so that a process that is killed leaves nothing behind; elsewhere its
/// name begins with a dot, so that whoever watches the folder passes it over. Gone at the end of
/// its life unless it was moved into place. Every operation throws FileError.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::filesystem::path finalPath);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  /// Appends.
  void write(std::string_view contents);
  /// Replaces what is there. Nothing more may be written.
  void moveIntoPlace();

 private:
  /// Whether a file without a name was made.
  [[nodiscard]] bool openNameless();
  void openNamed();
  /// Gives the nameless file the name `place`; false when something has it already.
  [[nodiscard]] bool link(const std::filesystem::path& place);
  [[noreturn]] void fail() const;

  std::filesystem::path target;
  FileDescriptor file;
  /// The name it has for the time being, if any.
  std::optional<std::filesystem::path> name;
};

}  // namespace corvane
