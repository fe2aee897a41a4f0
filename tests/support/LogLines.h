#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "CorvaneCore/json/Date.h"

namespace corvane::testing {

/// "LEVEL message" out of a whole line of the log, "[2026-01-31T12:00:00Z] [LEVEL] message";
/// nothing when the line does not have exactly that form.
[[nodiscard]] inline std::optional<std::string> levelAndMessage(std::string_view line) {
  constexpr std::size_t dateLength = 20;
  if (!line.starts_with("[") || !parseDate(line.substr(1, dateLength))) return std::nullopt;
  line.remove_prefix(1 + dateLength);
  if (!line.starts_with("] [")) return std::nullopt;
  line.remove_prefix(3);
  for (const std::string_view level : {"INFO", "WARN", "ERROR"}) {
    if (line.starts_with(std::string(level) + "] ")) {
      return std::string(level) + " " + std::string(line.substr(level.size() + 2));
    }
  }
  return std::nullopt;
}

}  // namespace corvane::testing
