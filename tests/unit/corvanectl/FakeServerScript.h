#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "TemporaryDirectory.h"

namespace corvane {

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

}  // namespace corvane
