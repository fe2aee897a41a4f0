#pragma once

#include <map>
#include <string>
#include <string_view>

namespace corvane::standin {

/// The header of a step of the given interaction type, e.g. "VISUAL ASSERT"; a type that this build
/// does not know stands for itself.
[[nodiscard]] std::string stepTitle(const std::string& interactionType);

/// `text` with every "$name" whose name is a key of `values` replaced by its value; the values
/// themselves are not looked into.
[[nodiscard]] std::string substituteParameters(std::string_view text,
                                               const std::map<std::string, std::string>& values);

}  // namespace corvane::standin
