#include "tests/unit/trace/TestPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <stdexcept>

namespace corvane::testing {

namespace {

double differenceOfBlocks(const Picture& one, const Picture& other, int left, int top) {
  constexpr int side = 8;
  std::array<double, 3> sums{};
  int pixels = 0;
  for (int y = top; y < std::min(top + side, one.size.height); ++y) {
    for (int x = left; x < std::min(left + side, one.size.width); ++x, ++pixels) {
      for (std::size_t c = 0; c < 3; ++c) sums[c] += one.at(x, y)[c] - other.at(x, y)[c];
    }
  }
  const auto furthest = std::max({std::abs(sums[0]), std::abs(sums[1]), std::abs(sums[2])});
  return furthest / pixels;
}

/// How much of the cell that begins at `cell * size` and is `size` long the pixel covers.
double overlap(int pixel, int cell, double size) {
  const double from = std::max(static_cast<double>(pixel), cell * size);
  const double to = std::min(pixel + 1.0, (cell + 1) * size);
  return std::max(0.0, to - from);
}

Rgb averageOfCell(const Picture& picture, int cellX, int cellY, double width, double height) {
  std::array<double, 3> sums{};
  const auto lastX = std::min(static_cast<int>(std::ceil((cellX + 1) * width)), picture.size.width);
  const auto lastY =
      std::min(static_cast<int>(std::ceil((cellY + 1) * height)), picture.size.height);
  for (int y = static_cast<int>(cellY * height); y < lastY; ++y) {
    for (int x = static_cast<int>(cellX * width); x < lastX; ++x) {
      const double part = overlap(x, cellX, width) * overlap(y, cellY, height);
      for (std::size_t c = 0; c < 3; ++c) sums[c] += part * picture.at(x, y)[c];
    }
  }
  Rgb average{};
  for (std::size_t c = 0; c < 3; ++c) {
    average[c] = static_cast<std::uint8_t>(std::lround(sums[c] / (width * height)));
  }
  return average;
}

}  // namespace

Picture drawn(PictureSize size, const std::function<Rgb(int x, int y)>& colourAt) {
  Picture picture(size);
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const Rgb colour = colourAt(x, y);
      std::copy(colour.begin(), colour.end(), picture.at(x, y));
      picture.at(x, y)[3] = 255;
    }
  }
  return picture;
}

Picture smoothPicture(PictureSize size) {
  std::array<std::uint8_t, 1024> wave{};
  for (std::size_t i = 0; i < wave.size(); ++i) {
    const double phase = 2 * std::numbers::pi * static_cast<double>(i) / wave.size();
    wave[i] = static_cast<std::uint8_t>(std::lround(127.5 + 110 * std::sin(phase)));
  }
  return drawn(size, [&](int x, int y) {
    const int u = 512 * x / size.width;
    const int v = 512 * y / size.height;
    const auto at = [&wave](int i) { return wave[static_cast<std::size_t>(i) % wave.size()]; };
    return Rgb{at(2 * u), at(2 * v + 160), at(u + v + 320)};
  });
}

Picture noisyPicture(PictureSize size) {
  std::uint32_t state = 1;
  const auto next = [&state] {
    state = state * 1664525 + 1013904223;
    return static_cast<std::uint8_t>(state >> 24);
  };
  return drawn(size, [&](int, int) { return Rgb{next(), next(), next()}; });
}

Rgb colourAt(const Picture& picture, int x, int y) {
  const std::uint8_t* pixel = picture.at(x, y);
  return {pixel[0], pixel[1], pixel[2]};
}

int distance(const Rgb& one, const Rgb& other) {
  int largest = 0;
  for (std::size_t c = 0; c < one.size(); ++c) {
    largest = std::max(largest, std::abs(one[c] - other[c]));
  }
  return largest;
}

PictureDistance distance(const Picture& one, const Picture& other) {
  if (one.size != other.size) throw std::invalid_argument("the pictures differ in size");
  PictureDistance result;
  double sum = 0;
  for (int y = 0; y < one.size.height; ++y) {
    for (int x = 0; x < one.size.width; ++x) {
      result.largest =
          std::max(result.largest, distance(colourAt(one, x, y), colourAt(other, x, y)));
      for (int c = 0; c < 3; ++c) sum += std::abs(one.at(x, y)[c] - other.at(x, y)[c]);
      if (x % 8 == 0 && y % 8 == 0) {
        result.largestOfBlocks =
            std::max(result.largestOfBlocks, differenceOfBlocks(one, other, x, y));
      }
    }
  }
  result.mean = sum / (3.0 * one.size.width * one.size.height);
  return result;
}

Picture averagedByDefinition(const Picture& picture, PictureSize to) {
  const double width = static_cast<double>(picture.size.width) / to.width;
  const double height = static_cast<double>(picture.size.height) / to.height;
  return drawn(to, [&](int x, int y) { return averageOfCell(picture, x, y, width, height); });
}

}  // namespace corvane::testing
