#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/speed/Contender.h"

namespace corvane::testing {

/// Where the contenders are and how often each is measured.
struct Setting {
  std::filesystem::path server;
  std::filesystem::path floor;
  /// The program that looks through folders as cheaply as can be.
  std::filesystem::path folders;
  std::filesystem::path node;
  /// The folder of the programs for Node.js.
  std::filesystem::path peers;
  /// In each round every contender has its turn.
  int rounds = 7;
  /// Where a plot of how cost grows is written, if anywhere.
  std::filesystem::path plot;

  /// This project's server in a private home, where it never starts the app.
  [[nodiscard]] Contender::Command serverIn(const std::filesystem::path& home) const;
  /// The minimal server on the official SDK.
  [[nodiscard]] Contender::Command sdkServer() const;
  /// The program that does the least.
  [[nodiscard]] Contender::Command floorProgram() const;
  /// The same, which also logs a line per message.
  [[nodiscard]] Contender::Command loggingFloor() const;
  /// The least that looking through folders costs.
  [[nodiscard]] Contender::Command foldersProgram(std::vector<std::string> arguments) const;
  /// A job for Node.js: one of the programs in `peers`, with its arguments.
  [[nodiscard]] Contender::Command nodeJob(const std::string& program,
                                           std::vector<std::string> arguments) const;
};

/// Milliseconds since `start`.
[[nodiscard]] inline double millisecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

}  // namespace corvane::testing
