#pragma once

#include <string>

/// The narrower authoring text for a self-healing author, which repairs a running test.
namespace corvane::HealingSubsetSpec {

/// The healing toolbox: the only step types that such an author may emit, with their fields.
[[nodiscard]] std::string make();

}  // namespace corvane::HealingSubsetSpec
