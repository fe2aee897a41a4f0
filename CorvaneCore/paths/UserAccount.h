#pragma once

#include <filesystem>

namespace corvane {

/// The variable's value when it is an absolute path, else an empty one: a relative one would mean a
/// different folder for each program that reads it.
[[nodiscard]] std::filesystem::path absoluteFromEnvironment(const char* variable);

/// The home folder of the account that this process runs as. Throws std::runtime_error when it has
/// none.
[[nodiscard]] std::filesystem::path accountHome();

}  // namespace corvane
