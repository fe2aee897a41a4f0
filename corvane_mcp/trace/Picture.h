#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

namespace corvane {

/// A picture cannot be read or made. The description is one line that says why, for people.
class PictureError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Width and height in pixels; both at least 1 in a picture that exists.
struct PictureSize {
  int width = 0;
  int height = 0;

  friend bool operator==(const PictureSize&, const PictureSize&) = default;
};

/// A picture in memory: rows from the top, four bytes a pixel, red, green, blue and one unused.
struct Picture {
  static constexpr std::size_t bytesPerPixel = 4;

  explicit Picture(PictureSize size)
      : size(size),
        bytes(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) *
              bytesPerPixel) {}

  /// The first byte of a pixel that lies inside.
  [[nodiscard]] std::uint8_t* at(int x, int y) { return bytes.data() + offset(x, y); }
  [[nodiscard]] const std::uint8_t* at(int x, int y) const { return bytes.data() + offset(x, y); }

  PictureSize size;
  std::vector<std::uint8_t> bytes;

 private:
  [[nodiscard]] std::size_t offset(int x, int y) const {
    return (static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) +
            static_cast<std::size_t>(x)) *
           bytesPerPixel;
  }
};

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
