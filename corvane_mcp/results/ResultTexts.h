#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "corvane_mcp/protocol/ContentBlock.h"
#include "corvane_mcp/results/ResultFileStore.h"

namespace corvane {

/// How get_result words what a result file says.
namespace ResultTexts {

/// The one line that a progress notification carries about a snapshot.
[[nodiscard]] std::string progressLine(const ResultFileStore::Snapshot& snapshot);

/// Advice for a failed run whose result speaks of a dialog or the like; nothing for others.
[[nodiscard]] std::optional<std::string> interruptAdvice(const ResultFileStore::Snapshot& snapshot);

}  // namespace ResultTexts

}  // namespace corvane
