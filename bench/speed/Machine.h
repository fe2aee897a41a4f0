#pragma once

#include <string>

#include "bench/speed/Setting.h"

namespace corvane::testing {

/// What the figures were measured on, as a Markdown list: processor, system, compilers, versions.
[[nodiscard]] std::string describeMachine(const Setting& setting);

/// How busy the machine is right now: the load averages of one, five and fifteen minutes.
[[nodiscard]] std::string loadAverages();

}  // namespace corvane::testing
