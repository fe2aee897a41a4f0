#include "CorvaneCore/json/IndentedJson.h"

#include <algorithm>

namespace corvane {

namespace {

/// Indentation ends here, so that a text of nothing but brackets does not grow without bound.
constexpr std::size_t deepestIndent = 40;

/// The length of the string literal at the front of `text`, its quotes included.
std::size_t stringLength(std::string_view text) {
  std::size_t end = 1;
  while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
  return std::min(end + 1, text.size());
}

}  // namespace

std::string indentedJson(std::string_view compact) {
  std::string text;
  std::size_t depth = 0;
  const auto newLine = [&] { text.append("\n").append(2 * std::min(depth, deepestIndent), ' '); };
  while (!compact.empty()) {
    const char c = compact.front();
    std::size_t length = 1;
    if (c == '"') length = stringLength(compact);
    if (compact.starts_with("{}") || compact.starts_with("[]")) length = 2;
    const bool opens = length == 1 && (c == '{' || c == '[');
    const bool closes = c == '}' || c == ']';
    if (closes) {
      --depth;
      newLine();
    }
    text += compact.substr(0, length);
    compact.remove_prefix(length);
    if (opens) ++depth;
    if (opens || c == ',') newLine();
    if (c == ':') text += ' ';
  }
  return text;
}

}  // namespace corvane
