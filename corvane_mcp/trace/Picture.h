#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace corvane {

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

}  // namespace corvane
