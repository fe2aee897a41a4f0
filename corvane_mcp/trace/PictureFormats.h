#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "corvane_mcp/trace/Picture.h"
#include "corvane_mcp/trace/PictureInput.h"

namespace corvane {

/// Whether a file that begins with `bytes` is a PNG.
[[nodiscard]] bool isPng(std::span<const std::uint8_t> bytes);

/// Decodes a PNG of any colour type and depth, interlaced too, to at most `largestSide` pixels on
/// the longer side. Rows are scaled down as they are decoded and never held all at once.
/// Throws PictureError, also for a file that is cut or whose checksums are wrong.
[[nodiscard]] DecodedPicture decodePng(PictureInput& input, int largestSide);

/// Whether a file that begins with `bytes` is a JPEG.
[[nodiscard]] bool isJpeg(std::span<const std::uint8_t> bytes);

/// Decodes a JPEG, baseline or progressive, in colour, grey or CMYK, to at most `largestSide`
/// pixels on the longer side: at a reduced scale when that still has a pixel for every one of the
/// result. Rows are scaled down as they are decoded; of a progressive picture the library holds the
/// coefficients, within a limit. Throws PictureError, also for a file that is cut or damaged.
[[nodiscard]] DecodedPicture decodeJpeg(PictureInput& input, int largestSide);

/// `picture` as a baseline JPEG of `quality` (0 to 1), with the ICC profile of its samples unless
/// `colourProfile` is empty. Throws PictureError.
[[nodiscard]] std::string encodeJpeg(const Picture& picture, double quality,
                                     std::span<const std::uint8_t> colourProfile);

}  // namespace corvane
