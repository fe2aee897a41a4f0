#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace corvane {

/// A fresh folder that is gone, with all it holds, at the end of the object's life.
class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = std::filesystem::temp_directory_path() / "corvanectl-test-XXXXXX";
    if (!::mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    folder = pattern;
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }

  [[nodiscard]] const std::filesystem::path& path() const { return folder; }

 private:
  std::filesystem::path folder;
};

}  // namespace corvane
