#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "corvane_mcp/protocol/ContentBlock.h"

namespace corvane {

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
