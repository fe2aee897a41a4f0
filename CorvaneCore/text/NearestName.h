#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// The one of `known` that somebody who wrote `given` may have meant: it differs in case or by a
/// few letters that are wrong, missing, added or swapped, or it begins with `given`. Of several the
/// nearest, of equals the first. Nothing when none is near.
[[nodiscard]] std::optional<std::string> nearestName(std::string_view given,
                                                     const std::vector<std::string>& known);

/// " Did you mean 'Sign in'?", or nothing when no name is near.
[[nodiscard]] std::string didYouMean(std::string_view given, const std::vector<std::string>& known);

}  // namespace corvane
