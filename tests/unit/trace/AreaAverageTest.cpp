#include "corvane_mcp/trace/AreaAverage.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

std::span<const std::uint8_t> rowOf(const Picture& picture, int y) {
  return {picture.at(0, y), static_cast<std::size_t>(picture.size.width) * Picture::bytesPerPixel};
}

Picture averaged(const Picture& picture, PictureSize to) {
  AreaAverage average(picture.size, to);
  for (int y = 0; y < picture.size.height; ++y) average.addRow(rowOf(picture, y));
  return average.take();
}

/// Gives the even rows after the odd ones, and of each row the last third of the pixels first.
Picture averagedScattered(const Picture& picture, PictureSize to) {
  ScatteredAreaAverage average(picture.size, to);
  for (const int firstRow : {1, 0}) {
    for (int y = firstRow; y < picture.size.height; y += 2) {
      for (const int firstColumn : {2, 1, 0}) {
        std::vector<std::uint8_t> pixels;
        for (int x = firstColumn; x < picture.size.width; x += 3) {
          pixels.insert(pixels.end(), picture.at(x, y), picture.at(x, y) + 4);
        }
        average.add(pixels, y, firstColumn, 3);
      }
    }
  }
  return average.take();
}

std::string nameOf(const ::testing::TestParamInfo<PictureSize>& size) {
  return ::testing::PrintToString(size.param);
}

class AreaAverageTest : public ::testing::TestWithParam<PictureSize> {};

TEST_P(AreaAverageTest, IsTheAverageOfTheAreaThatAPixelCovers) {
  const Picture picture = noisyPicture({97, 61});
  const Picture expected = averagedByDefinition(picture, GetParam());
  EXPECT_LE(distance(averaged(picture, GetParam()), expected).largest, 1);
  EXPECT_LE(distance(averagedScattered(picture, GetParam()), expected).largest, 1);
}

INSTANTIATE_TEST_SUITE_P(Sizes, AreaAverageTest,
                         ::testing::Values(PictureSize{97, 61}, PictureSize{96, 61},
                                           PictureSize{97, 60}, PictureSize{49, 30},
                                           PictureSize{13, 7}, PictureSize{1, 61},
                                           PictureSize{97, 1}, PictureSize{1, 1}),
                         nameOf);

TEST(AreaAverageTest, KeepsAPictureOfTheSameSizeAsItIs) {
  const Picture picture = noisyPicture({50, 40});
  EXPECT_EQ(averaged(picture, picture.size).bytes, picture.bytes);
}

TEST(AreaAverageTest, KeepsOneColourExactlyAtAnyScale) {
  for (const int value : {0, 1, 127, 254, 255}) {
    const auto level = static_cast<std::uint8_t>(value);
    const Picture picture =
        drawn({1290, 70}, [level](int, int) { return Rgb{level, level, level}; });
    for (const PictureSize to : {PictureSize{800, 43}, PictureSize{7, 1}}) {
      const Picture expected = drawn(to, [level](int, int) { return Rgb{level, level, level}; });
      EXPECT_EQ(distance(averaged(picture, to), expected).largest, 0);
      EXPECT_EQ(distance(averagedScattered(picture, to), expected).largest, 0);
    }
  }
}

}  // namespace
}  // namespace corvane::testing
