#include "CorvaneCore/files/FileError.h"

#include "CorvaneCore/text/Utf8.h"

namespace corvane {

FileError::FileError(std::string_view operation, const std::filesystem::path& file,
                     std::error_code code)
    : std::system_error(code) {
  description.append("could not ").append(operation).append(" ");
  description.append(escapeControls(displayPath(file))).append(": ").append(code.message());
}

std::string displayPath(const std::filesystem::path& path) {
  return toValidUtf8(path.native());
}

}  // namespace corvane
