#pragma once

#include <cmath>
#include <cstdint>

namespace corvane::standin {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  friend bool operator==(Colour, Colour) = default;
};

/// The colour written as 0xRRGGBB.
[[nodiscard]] constexpr Colour rgb(std::uint32_t code) {
  return {static_cast<std::uint8_t>(code >> 16), static_cast<std::uint8_t>(code >> 8 & 0xFF),
          static_cast<std::uint8_t>(code & 0xFF)};
}

inline constexpr Colour white = rgb(0xFFFFFF);
inline constexpr Colour black = rgb(0x000000);

/// `over` laid on `under`, covering the given share of it, 0 to 1.
[[nodiscard]] inline Colour mixed(Colour under, Colour over, double share) {
  const auto mix = [share](std::uint8_t a, std::uint8_t b) {
    return static_cast<std::uint8_t>(std::lround(a + (b - a) * share));
  };
  return {mix(under.red, over.red), mix(under.green, over.green), mix(under.blue, over.blue)};
}

}  // namespace corvane::standin
