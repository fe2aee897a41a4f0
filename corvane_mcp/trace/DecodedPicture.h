#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "corvane_mcp/trace/Orientation.h"
#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// What a decoder makes of a picture file.
struct DecodedPicture {
  /// Scaled down to fit, composed on black, as stored: not turned yet.
  Picture picture;
  /// The size the file holds, not turned either.
  PictureSize fullSize;
  Orientation orientation = Orientation::upright;
  /// The ICC profile of the samples; empty for none.
  std::vector<std::uint8_t> colourProfile;
};

/// A colour profile larger than this is left out of a result; those of screens are far smaller.
inline constexpr std::size_t largestColourProfile = std::size_t{16} << 10;

/// Whether `profile` is the ICC profile of red, green and blue samples, and so fits a result.
[[nodiscard]] bool isRgbProfile(std::span<const std::uint8_t> profile);

/// The size of a picture whose header says `width` and `height`. Throws PictureError when a picture
/// of that size is not worth decoding: decompression bombs are turned away here.
[[nodiscard]] PictureSize reasonableSize(std::uint32_t width, std::uint32_t height);

/// `full`, made smaller in proportion when its longer side exceeds `largestSide`.
[[nodiscard]] PictureSize fitted(PictureSize full, int largestSide);

}  // namespace corvane
