#include <algorithm>

#include "corvanectl/pictures/ColourReduction.h"
#include "corvanectl/pictures/InlineImage.h"

namespace corvane {

namespace {

/// Rows are sent in bands of this many, a character for each column of a band.
constexpr int bandHeight = 6;

/// One colour's part of a band, from the left.
class BandLine {
 public:
  void add(char character, std::size_t count) {
    if (character != last) {
      flush();
      last = character;
    }
    repeats += count;
  }
  [[nodiscard]] std::string take() {
    // What is empty at the end need not be said.
    if (last != emptyColumn) flush();
    return std::move(text);
  }

  static constexpr char emptyColumn = '?';

 private:
  void flush() {
    constexpr std::size_t shortestRepetition = 4;
    if (repeats >= shortestRepetition) {
      text += "!" + std::to_string(repeats) + last;
    } else {
      text.append(repeats, last);
    }
    repeats = 0;
  }

  std::string text;
  char last = emptyColumn;
  std::size_t repeats = 0;
};

std::string bandText(const ReducedPicture& picture, int top) {
  const auto width = static_cast<std::size_t>(picture.size.width);
  const int bottom = std::min(top + bandHeight, picture.size.height);
  const auto pixel = [&](std::size_t x, int y) {
    return picture.pixels[static_cast<std::size_t>(y) * width + x];
  };
  std::vector<bool> used(picture.colours.size());
  for (int y = top; y < bottom; ++y) {
    for (std::size_t x = 0; x < width; ++x) used[pixel(x, y)] = true;
  }
  std::string text;
  for (std::size_t colour = 0; colour < used.size(); ++colour) {
    if (!used[colour]) continue;
    BandLine line;
    for (std::size_t x = 0; x < width; ++x) {
      int column = 0;
      for (int y = top; y < bottom; ++y) column |= (pixel(x, y) == colour ? 1 : 0) << (y - top);
      line.add(static_cast<char>(BandLine::emptyColumn + column), 1);
    }
    if (!text.empty()) text += '$';
    text += "#" + std::to_string(colour) + line.take();
  }
  return text;
}

int percent(std::uint8_t sample) {
  return (sample * 100 + 127) / 255;
}

}  // namespace

std::string sixelImage(const Picture& picture) {
  constexpr std::size_t mostColours = 255;
  const ReducedPicture reduced = reduceColours(picture, mostColours);
  std::string image = "\033P0;1q\"1;1;" + std::to_string(picture.size.width) + ";" +
                      std::to_string(picture.size.height);
  for (std::size_t i = 0; i < reduced.colours.size(); ++i) {
    image += "#" + std::to_string(i) + ";2";
    for (const auto sample : reduced.colours[i]) image += ";" + std::to_string(percent(sample));
  }
  for (int top = 0; top < picture.size.height; top += bandHeight) {
    if (top > 0) image += '-';
    image += bandText(reduced, top);
  }
  return image + "\033\\";
}

}  // namespace corvane
