#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// `compact`, a compact JSON text, laid out over lines for a reader: two blanks to a level, at most
/// forty levels; an empty array or object stays on its line.
[[nodiscard]] std::string indentedJson(std::string_view compact);

}  // namespace corvane
