#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_mcp/protocol/McpRecords.h"
#include "corvane_mcp/results/ResultFileStore.h"

namespace corvane {

/// How get_result words what a result file says.
namespace ResultTexts {

/// The one line that a progress notification carries about a snapshot.
[[nodiscard]] std::string progressLine(const ResultFileStore::Snapshot& snapshot);

/// Advice for a failed run whose result speaks of a dialog or the like; nothing for others.
[[nodiscard]] std::optional<std::string> interruptAdvice(const ResultFileStore::Snapshot& snapshot);

}  // namespace ResultTexts

/// Which step's pictures a caller asked for.
struct StepTraceChoice {
  /// Default: the step that failed, else the last one executed.
  std::optional<std::int64_t> stepIndex;
  /// Default: the run's own capture session.
  std::optional<std::int64_t> testIndex;

  /// The blocks for that step of the run whose result file holds `rawJSON`; one explaining text
  /// when there is nothing to show. `rawJSON` is a JSON object.
  [[nodiscard]] std::vector<ContentBlock> blocks(std::string_view rawJSON) const;
};

}  // namespace corvane
