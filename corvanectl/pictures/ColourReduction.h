#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "corvane_mcp/trace/Picture.h"

namespace corvane {

/// A picture in few colours.
struct ReducedPicture {
  using Colour = std::array<std::uint8_t, 3>;

  PictureSize size;
  std::vector<Colour> colours;
  /// For each pixel, row by row from the top, its place among the colours.
  std::vector<std::uint8_t> pixels;
};

/// `picture` in at most `mostColours` colours, 1 to 256, chosen to lie where its own are.
[[nodiscard]] ReducedPicture reduceColours(const Picture& picture, std::size_t mostColours);

}  // namespace corvane
