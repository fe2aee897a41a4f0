#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// `bytes` in standard base64, padded, without line breaks.
[[nodiscard]] std::string base64(std::string_view bytes);

/// The bytes that standard base64 text stands for, line breaks allowed; nothing for other text.
[[nodiscard]] std::optional<std::string> decodeBase64(std::string_view text);

}  // namespace corvane
