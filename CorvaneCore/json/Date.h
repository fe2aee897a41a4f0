#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// An instant in whole seconds, as shared files and log lines carry it.
using Date = std::chrono::sys_seconds;

/// The current instant, cut to whole seconds.
[[nodiscard]] Date currentDate();

/// The ISO 8601 internet date-time in UTC, e.g. "2026-01-31T12:00:00Z".
[[nodiscard]] std::string formatDate(Date date);

/// Reads an ISO 8601 internet date-time in whole seconds with "Z" or a numeric offset. Nothing when
/// `text` has another form (fractional seconds included) or names no real instant of the years 0 to
/// 9999 in UTC.
[[nodiscard]] std::optional<Date> parseDate(std::string_view text);

}  // namespace corvane
