#pragma once

#include <cstdint>
#include <span>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// How a stored picture must be turned to stand upright; the values are those of EXIF. Each names
/// what is done to the stored rows.
enum class Orientation {
  upright = 1,
  mirrored = 2,
  turnedAround = 3,
  flipped = 4,
  transposed = 5,
  turnedRight = 6,
  transversed = 7,
  turnedLeft = 8,
};

/// The orientation that the EXIF data in `tiff` (from its byte-order mark on) asks for; upright
/// when it asks for none or makes no sense.
[[nodiscard]] Orientation exifOrientation(std::span<const std::uint8_t> tiff);

/// The size of a picture of `stored` size once it stands upright.
[[nodiscard]] PictureSize uprightSize(PictureSize stored, Orientation orientation);

/// `stored` turned upright.
[[nodiscard]] Picture turnedUpright(Picture stored, Orientation orientation);

}  // namespace corvane
