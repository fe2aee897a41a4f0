#include "corvane_standin/StepText.h"

#include <algorithm>

#include "CorvaneCore/authoring/vocabulary/InteractionType.h"

namespace corvane::standin {

namespace {

bool isNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

std::string stepTitle(const std::string& interactionType) {
  const auto known = fromRawValue<InteractionType>(interactionType);
  return known ? std::string(chipTitle(*known)) : interactionType;
}

std::string substituteParameters(std::string_view text,
                                 const std::map<std::string, std::string>& values) {
  std::string substituted;
  while (true) {
    const auto dollar = text.find('$');
    substituted += text.substr(0, dollar);
    if (dollar == std::string_view::npos) return substituted;
    text.remove_prefix(dollar);
    const auto nameEnd = std::find_if_not(text.begin() + 1, text.end(), isNameCharacter);
    const std::string_view placeholder =
        text.substr(0, static_cast<std::size_t>(nameEnd - text.begin()));
    const auto value = values.find(std::string(placeholder.substr(1)));
    substituted += value == values.end() ? placeholder : value->second;
    text.remove_prefix(placeholder.size());
  }
}

}  // namespace corvane::standin
