#pragma once

#include <string_view>
#include <vector>

#include "CorvaneCore/json/JsonObject.h"

namespace corvane {

/// The named members of the object that `text` holds. The whole text is checked, but the other
/// members are not kept, so that a large text costs little memory. Throws DecodeError, also when
/// `text` holds no object.
[[nodiscard]] JsonObject readMembers(std::string_view text,
                                     const std::vector<std::string_view>& names);

}  // namespace corvane
