#include "Screen.h"

#include <algorithm>
#include <stdexcept>

#include "CorvaneCore/text/Unicode.h"

namespace corvane::testing {

namespace {

std::size_t characterSize(char firstByte) {
  const auto byte = static_cast<unsigned char>(firstByte);
  return byte < 0x80 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

void Screen::write(std::string_view bytes) {
  const std::string text = pending + std::string(bytes);
  pending.clear();
  for (std::size_t i = 0; i < text.size();) {
    const char byte = text[i];
    if (byte == '\033') {
      const std::size_t end = text.find_first_of("ABCDHJKmhl", i + 1);
      if (end == std::string::npos) {
        pending = text.substr(i);
        return;
      }
      if (text[i + 1] != '[') throw std::runtime_error("an escape of another kind");
      control(std::string_view(text).substr(i + 2, end - i - 2), text[end]);
      i = end + 1;
    } else if (byte == '\r') {
      returnToRowStart();
      ++i;
    } else if (byte == '\n') {
      if (++line == lines.size()) lines.emplace_back();
      cell = 0;
      isAtRowStart = true;
      ++i;
    } else {
      const std::size_t size = characterSize(byte);
      if (i + size > text.size()) {
        pending = text.substr(i);
        return;
      }
      put(std::string_view(text).substr(i, size));
      i += size;
    }
  }
}

void Screen::resize(std::size_t newColumns) {
  columns = newColumns;
  isAtRowStart = false;
}

std::vector<std::string> Screen::rows() const {
  std::vector<std::string> rows;
  for (const Line& each : lines) {
    std::string row;
    std::size_t used = 0;
    for (const Cell& shown : each) {
      if (used + shown.width > columns) {
        rows.push_back(std::move(row));
        row.clear();
        used = 0;
      }
      row += shown.text;
      used += shown.width;
    }
    row.erase(row.find_last_not_of(' ') + 1);
    rows.push_back(std::move(row));
  }
  while (!rows.empty() && rows.back().empty()) rows.pop_back();
  return rows;
}

void Screen::put(std::string_view character) {
  const std::size_t width = countColumns(character);
  Line& current = lines[line];
  if (width == 0) {
    if (cell > 0) current[cell - 1].text += character;
    return;
  }
  isAtRowStart = false;
  if (cell == current.size()) current.emplace_back();
  current[cell++] = {std::string(character), width};
}

void Screen::control(std::string_view parameters, char command) {
  if (command == 'm') return;
  if (command == 'K' && parameters.empty()) return clearToEndOfRow();
  if (command == 'J' && parameters.empty()) return clearToEndOfScreen();
  if (command == 'A') return moveUp(std::stoul(std::string(parameters)));
  throw std::runtime_error("an unknown control: " + std::string(parameters) + command);
}

void Screen::moveUp(std::size_t count) {
  for (; count > 0; --count) {
    const std::size_t first = firstCellOfRow();
    // Into the row above, which is a part of the same line or the last row of the one before.
    if (first == 0 && line == 0) return;
    cell = first == 0 ? lines[--line].size() : first - 1;
    isAtRowStart = false;
    returnToRowStart();
  }
}

void Screen::returnToRowStart() {
  cell = firstCellOfRow();
  isAtRowStart = true;
}

void Screen::clearToEndOfRow() {
  Line& current = lines[line];
  current.resize(std::min(cell, current.size()));
}

void Screen::clearToEndOfScreen() {
  clearToEndOfRow();
  lines.resize(line + 1);
}

/// The first cell of the row in which the cursor stands.
std::size_t Screen::firstCellOfRow() const {
  if (isAtRowStart) return cell;
  std::size_t first = 0;
  std::size_t used = 0;
  // Behind the last cell of a full row the cursor has not moved on yet.
  for (std::size_t i = 0; i < std::min(cell + 1, lines[line].size()); ++i) {
    if (used + lines[line][i].width > columns) {
      first = i;
      used = 0;
    }
    used += lines[line][i].width;
  }
  return first;
}

}  // namespace corvane::testing
