#pragma once

#include <string>
#include <string_view>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// A picture for a terminal that knows the kitty graphics protocol, one pixel for one. Nothing is
/// answered to it.
[[nodiscard]] std::string kittyImage(const Picture& picture);

/// The bytes of a picture file for a terminal that takes them as iTerm2 does, shown so many rows
/// high.
[[nodiscard]] std::string itermImage(std::string_view file, int rows);

/// A picture for a terminal that knows sixel graphics, in at most 255 colours.
[[nodiscard]] std::string sixelImage(const Picture& picture);

}  // namespace corvane
