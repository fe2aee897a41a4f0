#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"

namespace corvane {

/// The byte of `text` at which it stops being JSON, given that readJson threw `error` for it.
[[nodiscard]] std::size_t faultIn(std::string_view text, const DecodeError& error);

/// "line 3, column 8": where this byte stands, in lines and characters counted from 1.
[[nodiscard]] std::string describePlace(std::string_view text, std::size_t offset);

}  // namespace corvane
