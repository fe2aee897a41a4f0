#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// `picture` as a baseline JPEG of `quality` (0 to 1), with the ICC profile of its samples unless
/// `colourProfile` is empty. Throws PictureError.
[[nodiscard]] std::string encodeJpeg(const Picture& picture, double quality,
                                     std::span<const std::uint8_t> colourProfile);

}  // namespace corvane
