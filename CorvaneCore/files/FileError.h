#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace corvane {

/// A file operation failed. The description is one line: what was tried, on which file, and why it
/// failed, e.g. "could not write /home/me/x.json: No space left on device".
class FileError : public std::system_error {
 public:
  FileError(std::string_view operation, const std::filesystem::path& file, std::error_code code);

  [[nodiscard]] const char* what() const noexcept override { return description.c_str(); }

 private:
  std::string description;
};

/// `path` as text for people and JSON: valid UTF-8, whatever its bytes.
[[nodiscard]] std::string displayPath(const std::filesystem::path& path);

}  // namespace corvane
