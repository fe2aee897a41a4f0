#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::testing {

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

/// What the fake server will do when the next client under test starts it. One object at a time.
class FakeServerScript {
 public:
  /// `lines` are commands of the fake server (FakeServer.cpp).
  explicit FakeServerScript(const std::vector<std::string>& lines);

  /// The fake server, as a program to start.
  [[nodiscard]] static std::string program() { return FAKE_SERVER_PROGRAM; }

  /// The lines that the server was sent.
  [[nodiscard]] std::vector<std::string> received() const;
  /// Whether the server that was started has ended and been waited for.
  [[nodiscard]] bool serverIsGone() const;

 private:
  [[nodiscard]] std::vector<std::string> record() const;

  TemporaryDirectory directory;
};

/// The commands with which a server is greeted, followed by `lines`.
[[nodiscard]] std::vector<std::string> greeted(std::vector<std::string> lines);

/// The command that answers a tool call with one text.
[[nodiscard]] std::string textResult(std::string_view text, bool isError = false);

/// The commands of one get_result call that is answered with a finished request.
[[nodiscard]] std::vector<std::string> finishedResult(std::string_view status,
                                                      std::string_view json);

}  // namespace corvane::testing
