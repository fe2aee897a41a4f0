#pragma once

#include <string_view>

namespace corvane {

/// The first sentence of `text`: up to a full stop, question or exclamation mark that is followed
/// by the end or by white space and no small letter, or up to an empty line.
[[nodiscard]] std::string_view firstSentence(std::string_view text);

}  // namespace corvane
