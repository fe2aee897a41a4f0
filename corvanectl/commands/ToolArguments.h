#pragma once

#include <string_view>

#include "CorvaneCore/json/AnyCodable.h"
#include "corvanectl/system/Interruption.h"

namespace corvane {

/// The arguments object that `source` stands for: a JSON text, "@" and the name of a file that
/// holds one, or "-" for standard input. Throws UsageError when it cannot be read or is no JSON
/// object, Interrupted while it waits for standard input.
[[nodiscard]] AnyCodable::Object readToolArguments(std::string_view source,
                                                   Interruption& interruption);

}  // namespace corvane
