#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::testing {

/// Shows two texts that differ from byte `position` on: the part around it of both, one below the
/// other, with a mark at the first difference.
[[nodiscard]] std::string describeDifference(std::string_view expected, std::string_view received,
                                             std::size_t position);

}  // namespace corvane::testing
