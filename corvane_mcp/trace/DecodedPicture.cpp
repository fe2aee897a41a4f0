#include "corvane_mcp/trace/DecodedPicture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "corvane_mcp/trace/PictureError.h"

namespace corvane {

namespace {

constexpr std::uint64_t mostPixels = 100'000'000;
constexpr std::uint32_t longestSide = 100'000;

int scaledSide(int side, int longer, int largestSide) {
  const double scaled = static_cast<double>(side) * largestSide / longer;
  return std::max(1, static_cast<int>(std::lround(scaled)));
}

}  // namespace

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
