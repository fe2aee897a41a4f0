#include "corvanectl/terminal/Table.h"

#include <algorithm>

#include "CorvaneCore/text/Unicode.h"
#include "corvanectl/terminal/DisplayText.h"

namespace corvane::ctl {

std::string asTable(const std::vector<std::vector<std::string>>& rows) {
  constexpr std::size_t gap = 2;
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], countColumns(oneLine(row[i])));
    }
  }
  std::string text;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string cell = oneLine(row[i]);
      line += cell + std::string(widths[i] + gap - countColumns(cell), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + "\n";
  }
  return text;
}

}  // namespace corvane::ctl
