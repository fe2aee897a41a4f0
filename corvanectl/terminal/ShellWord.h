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

/// The same for people to read: without quotes where none are needed.
[[nodiscard]] inline std::string typedWord(std::string_view text) {
  constexpr std::string_view harmless =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+:@";
  const bool isHarmless =
      !text.empty() && text.find_first_not_of(harmless) == std::string_view::npos;
  return isHarmless ? std::string(text) : shellWord(text);
}

}  // namespace corvane::ctl
