#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <ostream>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

using Rgb = std::array<std::uint8_t, 3>;

/// Shows a size in the messages of failed expectations and in the names of tests.
inline void PrintTo(const PictureSize& size, std::ostream* out) {
  *out << size.width << "x" << size.height;
}

}  // namespace corvane

namespace corvane::testing {

using Rgb = std::array<std::uint8_t, 3>;

/// A picture whose pixels `colourAt` gives.
[[nodiscard]] Picture drawn(PictureSize size, const std::function<Rgb(int x, int y)>& colourAt);

/// A picture that changes smoothly in every channel, so that lossy coding keeps it well.
[[nodiscard]] Picture smoothPicture(PictureSize size);

/// A picture of unrelated pixels, the same at every call.
[[nodiscard]] Picture noisyPicture(PictureSize size);

[[nodiscard]] Rgb colourAt(const Picture& picture, int x, int y);

/// How far two colours lie apart: the largest difference of a channel.
[[nodiscard]] int distance(const Rgb& one, const Rgb& other);

/// How far two pictures of one size lie apart.
struct PictureDistance {
  /// Over all channels of all pixels.
  double mean = 0;
  /// Of the pixel where they differ most.
  int largest = 0;
  /// Of the block of 8 x 8 pixels whose averages differ most: a part that is missing or displaced
  /// shows here, the grain of lossy coding does not.
  double largestOfBlocks = 0;
};
[[nodiscard]] PictureDistance distance(const Picture& one, const Picture& other);

/// `picture` scaled down by area, worked out pixel by pixel from the definition.
[[nodiscard]] Picture averagedByDefinition(const Picture& picture, PictureSize to);

}  // namespace corvane::testing
