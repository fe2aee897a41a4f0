#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace corvane::testing {

/// What a command line prints on standard output, run by the shell to its end.
[[nodiscard]] inline std::string shellOutput(const std::string& line) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(line.c_str(), "r"), &::pclose);
  std::string text;
  std::array<char, 4096> chunk;
  while (const std::size_t count = std::fread(chunk.data(), 1, chunk.size(), pipe.get())) {
    text.append(chunk.data(), count);
  }
  return text;
}

}  // namespace corvane::testing
