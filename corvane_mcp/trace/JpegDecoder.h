#pragma once

#include <cstdint>
#include <span>

#include "corvane_mcp/trace/DecodedPicture.h"
#include "corvane_mcp/trace/PictureInput.h"

namespace corvane {

/// Whether a file that begins with `bytes` is a JPEG.
[[nodiscard]] bool isJpeg(std::span<const std::uint8_t> bytes);

/// Decodes a JPEG, baseline or progressive, in colour, grey or CMYK, to at most `largestSide`
/// pixels on the longer side: at a reduced scale when that still has a pixel for every one of the
/// result. Rows are scaled down as they are decoded; of a progressive picture the library holds the
/// coefficients, within a limit. Throws PictureError, also for a file that is cut or damaged.
[[nodiscard]] DecodedPicture decodeJpeg(PictureInput& input, int largestSide);

}  // namespace corvane
