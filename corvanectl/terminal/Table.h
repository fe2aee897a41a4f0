#pragma once

#include <string>
#include <vector>

namespace corvane::ctl {

/// Rows of texts as lines whose columns begin below one another, two blanks apart. What stands in a
/// row is foreign text, made safe to show. Every line ends with a line feed, and none with blanks.
[[nodiscard]] std::string asTable(const std::vector<std::vector<std::string>>& rows);

}  // namespace corvane::ctl
