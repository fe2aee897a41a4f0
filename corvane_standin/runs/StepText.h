#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::standin {

/// The header of a step of the given interaction type, e.g. "VISUAL ASSERT"; a type that this build
/// does not know stands for itself.
[[nodiscard]] std::string stepTitle(const std::string& interactionType);

/// `text` beginning with a capital if it began with an ASCII letter.
[[nodiscard]] std::string capitalized(std::string text);

/// The names of the "$name" placeholders of `text` in their order, each as often as it appears. A
/// name begins with a letter or "_", so that a price is none.
[[nodiscard]] std::vector<std::string> placeholdersIn(std::string_view text);

/// `text` with every "$name" whose name is a key of `values` replaced by its value; the values
/// themselves are not looked into.
[[nodiscard]] std::string substituteParameters(std::string_view text,
                                               const std::map<std::string, std::string>& values);

}  // namespace corvane::standin
