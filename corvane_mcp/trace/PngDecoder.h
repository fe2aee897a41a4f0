#pragma once

#include <cstdint>
#include <span>

#include "corvane_mcp/trace/DecodedPicture.h"
#include "corvane_mcp/trace/PictureInput.h"

namespace corvane {

/// Whether a file that begins with `bytes` is a PNG.
[[nodiscard]] bool isPng(std::span<const std::uint8_t> bytes);

/// Decodes a PNG of any colour type and depth, interlaced too, to at most `largestSide` pixels on
/// the longer side. Rows are scaled down as they are decoded and never held all at once.
/// Throws PictureError, also for a file that is cut or whose checksums are wrong.
[[nodiscard]] DecodedPicture decodePng(PictureInput& input, int largestSide);

}  // namespace corvane
