#include <algorithm>
#include <optional>

#include "CorvaneCore/text/Unicode.h"
#include "corvane_standin/steps/Steps.h"

namespace corvane::standin {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(c) || c == '_';
}

/// Cuts `text` before its next "$" and behind the name that follows it. `found` is told the text
/// before and, unless there is no "$" any more, the name.
template <class Found>
void cutAtPlaceholders(std::string_view text, Found found) {
  while (true) {
    const auto dollar = text.find('$');
    if (dollar == std::string_view::npos) return found(text, std::nullopt);
    const auto before = text.substr(0, dollar);
    text.remove_prefix(dollar + 1);
    const auto nameEnd = std::find_if_not(text.begin(), text.end(), isNameCharacter);
    const auto name = text.substr(0, static_cast<std::size_t>(nameEnd - text.begin()));
    found(before, std::optional(name));
    text.remove_prefix(name.size());
  }
}

}  // namespace

std::vector<std::string_view> split(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> parts;
  while (true) {
    const auto end = text.find(separator);
    const auto part = trimWhitespace(text.substr(0, end));
    if (!part.empty()) parts.push_back(part);
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + separator.size());
  }
}

bool isOneOf(std::string_view words, std::string_view word) {
  const auto each = split(words);
  return std::find(each.begin(), each.end(), word) != each.end();
}

std::string capitalised(std::string text) {
  if (!text.empty() && text.front() >= 'a' && text.front() <= 'z') {
    text.front() = static_cast<char>(text.front() - 'a' + 'A');
  }
  return text;
}

std::vector<std::string> placeholdersIn(std::string_view text) {
  std::vector<std::string> names;
  cutAtPlaceholders(text, [&](std::string_view, std::optional<std::string_view> name) {
    if (name && !name->empty() && !isDigit(name->front())) names.emplace_back(*name);
  });
  return names;
}

std::string substituteParameters(std::string_view text,
                                 const std::map<std::string, std::string>& values) {
  std::string substituted;
  cutAtPlaceholders(text, [&](std::string_view before, std::optional<std::string_view> name) {
    substituted += before;
    if (!name) return;
    const auto value = values.find(std::string(*name));
    substituted += value == values.end() ? "$" + std::string(*name) : value->second;
  });
  return substituted;
}

}  // namespace corvane::standin
