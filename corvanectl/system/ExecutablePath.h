#pragma once

#include <filesystem>

namespace corvane {

/// The file that this program was started from, links followed; empty when the system does not
/// tell. One implementation per platform.
[[nodiscard]] std::filesystem::path executablePath();

}  // namespace corvane
