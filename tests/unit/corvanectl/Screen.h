#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::testing {

/// What stands on a terminal after a program has written to it: the few controls that corvanectl
/// uses, lines that wrap at the edge, and what happens to them when the window is resized. Anything
/// else that begins with an escape throws std::runtime_error.
class Screen {
 public:
  explicit Screen(std::size_t columns) : columns(columns) {}

  void write(std::string_view bytes);
  /// Gives the window another width; lines that were wrapped at its edge are wrapped anew.
  void resize(std::size_t newColumns);

  /// The rows that are not empty below the last, without blanks at their ends.
  [[nodiscard]] std::vector<std::string> rows() const;

 private:
  /// A character with those that combine with it, and how many columns it takes.
  struct Cell {
    std::string text;
    std::size_t width = 1;
  };
  /// A line as it was written, which may take several rows.
  using Line = std::vector<Cell>;

  void put(std::string_view character);
  void control(std::string_view parameters, char command);
  void moveUp(std::size_t count);
  void returnToRowStart();
  void clearToEndOfRow();
  void clearToEndOfScreen();
  [[nodiscard]] std::size_t firstCellOfRow() const;

  std::size_t columns;
  std::vector<Line> lines{1};
  /// The cursor: which line, and before which of its cells.
  std::size_t line = 0;
  std::size_t cell = 0;
  /// Whether it stands at the beginning of a row, and not behind the last cell of the one above.
  bool isAtRowStart = true;
  /// The beginning of an escape sequence whose end has not come yet.
  std::string pending;
};

}  // namespace corvane::testing
