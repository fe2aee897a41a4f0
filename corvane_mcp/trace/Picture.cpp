#include "corvane_mcp/trace/Picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace corvane {

namespace {

/// Reads numbers of the byte order that EXIF data declares.
class TiffBytes {
 public:
  explicit TiffBytes(std::span<const std::uint8_t> bytes) : bytes(bytes) {}

  /// Whether the data begins with one of the two byte-order marks; settles the order.
  [[nodiscard]] bool readByteOrder() {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    bigEndian = text.starts_with(std::string_view("MM\0*", 4));
    return bigEndian || text.starts_with(std::string_view("II*\0", 4));
  }

  /// The unsigned number of `length` bytes at `offset`, when there are that many.
  [[nodiscard]] std::optional<std::uint32_t> number(std::size_t offset, std::size_t length) const {
    if (offset > bytes.size() || bytes.size() - offset < length) return std::nullopt;
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < length; ++i) {
      value = value << 8 | bytes[offset + (bigEndian ? i : length - 1 - i)];
    }
    return value;
  }

 private:
  std::span<const std::uint8_t> bytes;
  bool bigEndian = false;
};

/// What turning does, in order: exchange rows and columns, then mirror each way.
struct Turn {
  bool transposes;
  bool mirrorsX;
  bool mirrorsY;
};

Turn turnFor(Orientation orientation) {
  switch (orientation) {
    case Orientation::mirrored:
      return {false, true, false};
    case Orientation::turnedAround:
      return {false, true, true};
    case Orientation::flipped:
      return {false, false, true};
    case Orientation::transposed:
      return {true, false, false};
    case Orientation::turnedRight:
      return {true, true, false};
    case Orientation::transversed:
      return {true, true, true};
    case Orientation::turnedLeft:
      return {true, false, true};
    case Orientation::upright:
      break;
  }
  return {false, false, false};
}

constexpr std::uint64_t mostPixels = 100'000'000;
constexpr std::uint32_t longestSide = 100'000;

int scaledSide(int side, int longer, int largestSide) {
  const double scaled = static_cast<double>(side) * largestSide / longer;
  return std::max(1, static_cast<int>(std::lround(scaled)));
}

}  // namespace

Orientation exifOrientation(std::span<const std::uint8_t> tiff) {
  constexpr std::uint32_t orientationTag = 0x0112;
  constexpr std::uint32_t shortType = 3;
  constexpr std::size_t entrySize = 12;
  TiffBytes bytes(tiff);
  if (!bytes.readByteOrder()) return Orientation::upright;
  const std::size_t directory = bytes.number(4, 4).value_or(0);
  const std::uint32_t entries = bytes.number(directory, 2).value_or(0);
  for (std::uint32_t i = 0; i < entries; ++i) {
    const std::size_t entry = directory + 2 + i * entrySize;
    if (bytes.number(entry, 2) != orientationTag) continue;
    const std::uint32_t value = bytes.number(entry + 8, 2).value_or(0);
    const bool makesSense = bytes.number(entry + 2, 2) == shortType && value >= 1 && value <= 8;
    return makesSense ? static_cast<Orientation>(value) : Orientation::upright;
  }
  return Orientation::upright;
}

PictureSize uprightSize(PictureSize stored, Orientation orientation) {
  if (!turnFor(orientation).transposes) return stored;
  return {stored.height, stored.width};
}

Picture turnedUpright(Picture stored, Orientation orientation) {
  if (orientation == Orientation::upright) return stored;
  const Turn turn = turnFor(orientation);
  Picture upright(uprightSize(stored.size, orientation));
  const auto [width, height] = upright.size;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      int column = turn.mirrorsX ? width - 1 - x : x;
      int row = turn.mirrorsY ? height - 1 - y : y;
      if (turn.transposes) std::swap(column, row);
      std::memcpy(upright.at(x, y), stored.at(column, row), Picture::bytesPerPixel);
    }
  }
  return upright;
}

bool isRgbProfile(std::span<const std::uint8_t> profile) {
  // The fixed header of a profile: its size, the kind of samples and a signature among the rest.
  constexpr std::size_t headerSize = 128;
  if (profile.size() < headerSize || profile.size() > largestColourProfile) return false;
  const std::size_t size = (std::size_t{profile[0]} << 24) | (std::size_t{profile[1]} << 16) |
                           (std::size_t{profile[2]} << 8) | profile[3];
  return size == profile.size() && std::memcmp(&profile[16], "RGB ", 4) == 0 &&
         std::memcmp(&profile[36], "acsp", 4) == 0;
}

PictureSize reasonableSize(std::uint32_t width, std::uint32_t height) {
  if (width == 0 || height == 0) throw PictureError("the picture has no pixels");
  if (width > longestSide || height > longestSide || std::uint64_t{width} * height > mostPixels) {
    throw PictureError("the picture is too large: " + std::to_string(width) + " x " +
                       std::to_string(height) + " pixels");
  }
  return {static_cast<int>(width), static_cast<int>(height)};
}

PictureSize fitted(PictureSize full, int largestSide) {
  const int longer = std::max(full.width, full.height);
  if (longer <= largestSide) return full;
  return {scaledSide(full.width, longer, largestSide),
          scaledSide(full.height, longer, largestSide)};
}

}  // namespace corvane
