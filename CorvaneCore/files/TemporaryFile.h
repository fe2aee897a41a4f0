#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "CorvaneCore/files/Files.h"

namespace corvane {

/// A file being written for its final place, in the same folder. Gone at the end of its life unless
/// it was moved into place. Every operation throws FileError.
class TemporaryFile {
 public:
  enum class Kind {
    /// Without a name until it is whole, where the system can do it, so that a process that is
    /// killed leaves nothing behind.
    nameless,
    /// With a name that begins with a dot, so that whoever watches the folder passes it over.
    named,
  };

  TemporaryFile(std::filesystem::path finalPath, Kind kind, Access access);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  /// Appends.
  void write(std::string_view contents);
  /// Replaces what is there. Nothing more may be written. False when the file has no name and the
  /// system will not give it one, as it takes the way through /proc to do so; it is of no use then.
  [[nodiscard]] bool moveIntoPlace();

 private:
  /// Whether a file without a name was made.
  [[nodiscard]] bool openNameless(mode_t mode);
  void openNamed(mode_t mode);
  enum class Linked { yes, nameTaken, refused };
  /// Gives the nameless file the name `place`.
  [[nodiscard]] Linked link(const std::filesystem::path& place);
  [[noreturn]] void fail() const;

  std::filesystem::path target;
  FileDescriptor file;
  /// The name it has for the time being, if any.
  std::optional<std::filesystem::path> name;
};

}  // namespace corvane
