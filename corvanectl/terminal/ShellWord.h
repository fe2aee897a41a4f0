#pragma once

#include <string>
#include <string_view>

namespace corvane::ctl {

/// `text` as one word of a shell's command line.
[[nodiscard]] inline std::string shellWord(std::string_view text) {
  std::string word = "'";
  for (const char c : text) word += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return word + "'";
}

}  // namespace corvane::ctl
