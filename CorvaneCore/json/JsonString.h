#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What stands for `content`, the text between the quotes of a JSON string, once its escapes are
/// resolved: `content` itself when it has none, else `room`, which is overwritten. Throws
/// DecodeError for a malformed escape and for a surrogate without its other half.
[[nodiscard]] std::string_view unescapeJson(std::string_view content, std::string& room);

}  // namespace corvane
