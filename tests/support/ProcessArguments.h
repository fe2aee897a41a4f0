#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace corvane::testing {

/// A process's arguments joined with blanks, from the bytes in which macOS tells them: their count,
/// the program's path, zeros up to the first argument, then arguments and environment, each ended
/// by a zero. As much as there is of bytes that end too early.
[[nodiscard]] inline std::string joinedArguments(std::string_view bytes) {
  std::int32_t count = 0;
  if (bytes.size() < sizeof count) return "";
  std::memcpy(&count, bytes.data(), sizeof count);
  bytes.remove_prefix(sizeof count);
  bytes.remove_prefix(std::min(bytes.find('\0'), bytes.size()));
  bytes.remove_prefix(std::min(bytes.find_first_not_of('\0'), bytes.size()));
  std::string joined;
  for (std::int32_t i = 0; i < count && !bytes.empty(); ++i) {
    const auto argument = bytes.substr(0, bytes.find('\0'));
    joined.append(i == 0 ? "" : " ").append(argument);
    bytes.remove_prefix(std::min(argument.size() + 1, bytes.size()));
  }
  return joined;
}

}  // namespace corvane::testing
