#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// A fresh random UUID (version 4) in canonical 8-4-4-4-12 form, lower case, from the system's
/// random source. Safe to call from any thread.
[[nodiscard]] std::string makeRequestId();

/// The lower-case form of `text` when it is a UUID in canonical form, in any case.
[[nodiscard]] std::optional<std::string> parseRequestId(std::string_view text);

}  // namespace corvane
