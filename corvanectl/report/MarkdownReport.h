#pragma once

#include <cstddef>
#include <string>

#include "corvanectl/report/Report.h"

namespace corvane::ctl {

/// Build services refuse a summary of more than a mebibyte.
inline constexpr std::size_t longestSummary = 1'000'000;

/// The report in the Markdown that build services show as a summary: how the request ended, a table
/// of its tests, and of each the steps that somebody should look at. Tests and steps for which
/// there is no room within `limit` bytes are left out, and counted in a last line.
[[nodiscard]] std::string markdownReport(const Report& report, std::size_t limit = longestSummary);

}  // namespace corvane::ctl
