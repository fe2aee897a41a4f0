#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvane::ctl {

/// `text` with blanks in the place of its comments and of a byte order mark, so that every other
/// byte is where it was.
[[nodiscard]] std::string withoutComments(std::string_view text);

/// `text`, which has no comments, with blanks in the place of commas behind the last value of an
/// object or array.
[[nodiscard]] std::string withoutLastCommas(std::string text);

}  // namespace corvane::ctl
