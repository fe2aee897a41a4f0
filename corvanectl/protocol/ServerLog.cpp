#include "corvanectl/protocol/ServerLog.h"

#include <optional>
#include <utility>

namespace corvane {

namespace {

constexpr std::size_t longestLine = std::size_t{64} << 10;
constexpr std::size_t longestLineKept = 500;

}  // namespace

void ServerLog::append(std::string_view bytes) {
  buffer.append(bytes);
  while (auto line = buffer.takeLine()) take(std::move(*line));
  if (buffer.size() > longestLine) finish();
}

void ServerLog::finish() {
  if (auto rest = buffer.takeRest()) take(std::move(*rest));
}

void ServerLog::take(std::string line) {
  if (forward) forward(line);
  if (line.size() > longestLineKept) line.resize(longestLineKept);
  kept.push_back(std::move(line));
  if (kept.size() > linesKept) kept.pop_front();
}

}  // namespace corvane
