#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace corvane {

/// The server program to start: the `given` one, else the one beside this program (`ownPath`), else
/// the first in the folders of `searchPath`, a colon-separated list. Throws ProtocolError when
/// there is none. A given path is not checked.
[[nodiscard]] std::filesystem::path locateServer(const std::optional<std::filesystem::path>& given,
                                                 const std::filesystem::path& ownPath,
                                                 std::string_view searchPath);

}  // namespace corvane
