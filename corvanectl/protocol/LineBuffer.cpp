#include "corvanectl/protocol/LineBuffer.h"

#include <utility>

namespace corvane {

void LineBuffer::append(std::string_view bytes) {
  // Moving the rest to the front only when as much was taken keeps the cost per byte constant.
  if (start > held.size() / 2) {
    held.erase(0, start);
    searched -= start;
    start = 0;
  }
  held += bytes;
}

std::optional<std::string> LineBuffer::takeLine() {
  const std::size_t end = held.find('\n', searched);
  if (end == std::string::npos) {
    searched = held.size();
    return std::nullopt;
  }
  std::string line = held.substr(start, end - start);
  start = searched = end + 1;
  return line;
}

std::optional<std::string> LineBuffer::takeRest() {
  if (size() == 0) return std::nullopt;
  std::string rest = held.substr(start);
  held.clear();
  start = searched = 0;
  return rest;
}

}  // namespace corvane
