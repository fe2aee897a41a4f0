#include "corvanectl/pictures/ColourReduction.h"

#include <algorithm>
#include <span>

namespace corvane {

namespace {

constexpr std::size_t channels = 3;
/// Colours are told apart by this many bits of each channel.
constexpr unsigned bits = 5;
constexpr std::size_t binCount = std::size_t{1} << (bits * channels);

/// Pixels whose colours are alike.
struct Bin {
  std::size_t index = 0;
  std::uint64_t count = 0;
  std::array<std::uint64_t, channels> sums{};

  [[nodiscard]] std::uint64_t mean(std::size_t channel) const { return sums[channel] / count; }
};

std::size_t binOf(const std::uint8_t* pixel) {
  std::size_t bin = 0;
  for (std::size_t c = 0; c < channels; ++c) bin = bin << bits | pixel[c] >> (8 - bits);
  return bin;
}

std::vector<Bin> usedBins(const Picture& picture) {
  std::vector<Bin> bins(binCount);
  for (std::size_t i = 0; i < picture.bytes.size(); i += Picture::bytesPerPixel) {
    Bin& bin = bins[binOf(&picture.bytes[i])];
    ++bin.count;
    for (std::size_t c = 0; c < channels; ++c) bin.sums[c] += picture.bytes[i + c];
  }
  for (std::size_t i = 0; i < bins.size(); ++i) bins[i].index = i;
  std::erase_if(bins, [](const Bin& bin) { return bin.count == 0; });
  return bins;
}

/// Bins that are to share one colour.
struct Box {
  std::span<Bin> bins;
  std::size_t widestChannel = 0;
  /// How much is wrong with showing all of them in one colour.
  std::uint64_t error = 0;

  explicit Box(std::span<Bin> bins) : bins(bins) {
    std::uint64_t widest = 0;
    std::uint64_t pixels = 0;
    for (const Bin& bin : bins) pixels += bin.count;
    for (std::size_t c = 0; c < channels; ++c) {
      const auto [least, most] =
          std::minmax_element(bins.begin(), bins.end(),
                              [c](const Bin& a, const Bin& b) { return a.mean(c) < b.mean(c); });
      const std::uint64_t width = most->mean(c) - least->mean(c);
      if (width >= widest) widestChannel = c;
      widest = std::max(widest, width);
    }
    // Single dots far from the rest are seen less than a wide area that is off a little.
    error = bins.size() > 1 ? widest * widest * pixels : 0;
  }

  /// Where half of the pixels lie on either side, along the widest channel.
  [[nodiscard]] std::size_t middle() const {
    const std::size_t channel = widestChannel;
    std::sort(bins.begin(), bins.end(),
              [channel](const Bin& a, const Bin& b) { return a.mean(channel) < b.mean(channel); });
    std::uint64_t all = 0;
    for (const Bin& bin : bins) all += bin.count;
    std::uint64_t before = 0;
    std::size_t i = 0;
    while (i + 1 < bins.size() && before + bins[i].count <= all / 2) before += bins[i++].count;
    return std::clamp<std::size_t>(i, 1, bins.size() - 1);
  }

  [[nodiscard]] ReducedPicture::Colour colour() const {
    ReducedPicture::Colour colour{};
    std::uint64_t count = 0;
    std::array<std::uint64_t, channels> sums{};
    for (const Bin& bin : bins) {
      count += bin.count;
      for (std::size_t c = 0; c < channels; ++c) sums[c] += bin.sums[c];
    }
    for (std::size_t c = 0; c < channels; ++c) {
      colour[c] = static_cast<std::uint8_t>((sums[c] + count / 2) / count);
    }
    return colour;
  }
};

std::vector<Box> boxesFor(std::span<Bin> bins, std::size_t mostColours) {
  std::vector<Box> boxes{Box(bins)};
  while (boxes.size() < mostColours) {
    const auto worst = std::max_element(
        boxes.begin(), boxes.end(), [](const Box& a, const Box& b) { return a.error < b.error; });
    if (worst->error == 0) break;
    const std::span<Bin> whole = worst->bins;
    const std::size_t middle = worst->middle();
    *worst = Box(whole.first(middle));
    boxes.emplace_back(whole.subspan(middle));
  }
  return boxes;
}

}  // namespace

ReducedPicture reduceColours(const Picture& picture, std::size_t mostColours) {
  ReducedPicture reduced{picture.size, {}, {}};
  auto bins = usedBins(picture);
  std::vector<std::uint8_t> colourOfBin(binCount);
  for (const Box& box : boxesFor(bins, mostColours)) {
    for (const Bin& bin : box.bins) {
      colourOfBin[bin.index] = static_cast<std::uint8_t>(reduced.colours.size());
    }
    reduced.colours.push_back(box.colour());
  }
  reduced.pixels.reserve(picture.bytes.size() / Picture::bytesPerPixel);
  for (std::size_t i = 0; i < picture.bytes.size(); i += Picture::bytesPerPixel) {
    reduced.pixels.push_back(colourOfBin[binOf(&picture.bytes[i])]);
  }
  return reduced;
}

}  // namespace corvane
