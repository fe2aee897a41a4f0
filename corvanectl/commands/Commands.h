#pragma once

#include <memory>
#include <vector>

#include "corvanectl/commands/Command.h"

namespace corvane::ctl {

/// Every command of the program, in the order in which help lists them.
[[nodiscard]] std::vector<std::unique_ptr<Command>> allCommands();

}  // namespace corvane::ctl
