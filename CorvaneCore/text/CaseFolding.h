#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// `text` in the form in which texts that differ only in case, or in how an accent is composed, are
/// equal: É and é, Σ and ς. Independent of the locale. A letter stays one letter, so that ß does
/// not become ss and "Maße" and "Masse" remain two names. `text` is valid UTF-8.
[[nodiscard]] std::string foldCase(std::string_view text);

}  // namespace corvane
