#include "corvane_mcp/trace/PngDecoder.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane {
namespace {

constexpr int unscaled = 800;

DecodedPicture decoded(const std::string& file, int largestSide = unscaled) {
  PictureInput input(asBytes(file));
  return decodePng(input, largestSide);
}

std::vector<PngKind> allKinds() {
  constexpr int grey = 0;
  constexpr int colour = 2;
  constexpr int palette = 3;
  constexpr int greyAlpha = 4;
  constexpr int colourAlpha = 6;
  const std::vector<std::pair<int, std::vector<int>>> depths{{grey, {1, 2, 4, 8, 16}},
                                                             {colour, {8, 16}},
                                                             {palette, {1, 2, 4, 8}},
                                                             {greyAlpha, {8, 16}},
                                                             {colourAlpha, {8, 16}}};
  std::vector<PngKind> kinds;
  for (const auto& [colourType, depthsOfType] : depths) {
    for (const int depth : depthsOfType) {
      for (const bool interlaced : {false, true}) {
        kinds.push_back({colourType, depth, interlaced, false});
        if (colourType < greyAlpha) kinds.push_back({colourType, depth, interlaced, true});
      }
    }
  }
  return kinds;
}

std::string nameOf(const testing::TestParamInfo<PngKind>& kind) {
  return testing::PrintToString(kind.param);
}

class PngKindTest : public testing::TestWithParam<PngKind> {};

TEST_P(PngKindTest, ShowsEveryPixelOnBlack) {
  const MadePng made = randomPng(GetParam(), {37, 29});
  const DecodedPicture picture = decoded(made.file);
  EXPECT_EQ(picture.fullSize, (PictureSize{37, 29}));
  EXPECT_EQ(distance(picture.picture, made.shown).largest, 0);
}

TEST_P(PngKindTest, IsScaledDown) {
  const MadePng made = randomPng(GetParam(), {97, 61});
  const DecodedPicture picture = decoded(made.file, 20);
  EXPECT_EQ(picture.fullSize, (PictureSize{97, 61}));
  EXPECT_LE(distance(picture.picture, averagedByDefinition(made.shown, {20, 13})).largest, 1);
}

INSTANTIATE_TEST_SUITE_P(All, PngKindTest, testing::ValuesIn(allKinds()), nameOf);

TEST(PngDecoderTest, InterlacedPicturesMayLackPasses) {
  for (int width = 1; width <= 9; ++width) {
    for (int height = 1; height <= 9; ++height) {
      const MadePng made = randomPng({.colourType = 2, .interlaced = true}, {width, height});
      EXPECT_EQ(distance(decoded(made.file).picture, made.shown).largest, 0)
          << width << " x " << height;
    }
  }
}

TEST(PngDecoderTest, CorrectsTheGammaThatAFileStates) {
  const Picture grey = drawn({8, 8}, [](int, int) { return Rgb{55, 55, 55}; });
  const auto shown = [&](int gamma) {
    return colourAt(decoded(pngFile(grey, {.gamma = gamma})).picture, 4, 4)[0];
  };
  EXPECT_EQ(shown(0), 55);
  EXPECT_EQ(shown(45455), 55);
  EXPECT_NEAR(shown(100000), 127, 1);
}

TEST(PngDecoderTest, ReadsTheOrientation) {
  const std::string file = pngFile(noisyPicture({4, 4}), {.exif = exifData(6, true)});
  EXPECT_EQ(decoded(file).orientation, Orientation::turnedRight);
  EXPECT_EQ(decoded(pngFile(noisyPicture({4, 4}))).orientation, Orientation::upright);
}

TEST(PngDecoderTest, HandsOverTheColourProfile) {
  const std::string profile = colourProfile("RGB ", 600);
  const DecodedPicture picture = decoded(pngFile(noisyPicture({4, 4}), {.profile = profile}));
  EXPECT_EQ(std::string(picture.colourProfile.begin(), picture.colourProfile.end()), profile);
  EXPECT_TRUE(decoded(pngFile(noisyPicture({4, 4}))).colourProfile.empty());
}

TEST(PngDecoderTest, KnowsItsFilesByTheirStart) {
  const std::string file = pngFile(noisyPicture({4, 4}));
  EXPECT_TRUE(isPng(asBytes(file)));
  EXPECT_FALSE(isPng(asBytes(file.substr(0, 7))));
  EXPECT_FALSE(isPng(asBytes(jpegFile(noisyPicture({4, 4})))));
}

}  // namespace
}  // namespace corvane
