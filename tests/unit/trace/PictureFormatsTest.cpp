#include "corvane_mcp/trace/PictureFormats.h"

#include <gtest/gtest.h>

#include "tests/unit/trace/PictureFiles.h"
#include "tests/unit/trace/TestPictures.h"

namespace corvane::testing {
namespace {

constexpr int unscaled = 800;

DecodedPicture decodedPng(const std::string& file, int largestSide = unscaled) {
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

std::string nameOfPng(const ::testing::TestParamInfo<PngKind>& kind) {
  return ::testing::PrintToString(kind.param);
}

class PngKindTest : public ::testing::TestWithParam<PngKind> {};

TEST_P(PngKindTest, ShowsEveryPixelOnBlack) {
  const MadePng made = randomPng(GetParam(), {37, 29});
  const DecodedPicture picture = decodedPng(made.file);
  EXPECT_EQ(picture.fullSize, (PictureSize{37, 29}));
  EXPECT_EQ(distance(picture.picture, made.shown).largest, 0);
}

TEST_P(PngKindTest, IsScaledDown) {
  const MadePng made = randomPng(GetParam(), {97, 61});
  const DecodedPicture picture = decodedPng(made.file, 20);
  EXPECT_EQ(picture.fullSize, (PictureSize{97, 61}));
  EXPECT_LE(distance(picture.picture, averagedByDefinition(made.shown, {20, 13})).largest, 1);
}

INSTANTIATE_TEST_SUITE_P(All, PngKindTest, ::testing::ValuesIn(allKinds()), nameOfPng);

TEST(PngDecoderTest, InterlacedPicturesMayLackPasses) {
  for (int width = 1; width <= 9; ++width) {
    for (int height = 1; height <= 9; ++height) {
      const MadePng made = randomPng({.colourType = 2, .interlaced = true}, {width, height});
      EXPECT_EQ(distance(decodedPng(made.file).picture, made.shown).largest, 0)
          << width << " x " << height;
    }
  }
}

TEST(PngDecoderTest, CorrectsTheGammaThatAFileStates) {
  const Picture grey = drawn({8, 8}, [](int, int) { return Rgb{55, 55, 55}; });
  const auto shown = [&](int gamma) {
    return colourAt(decodedPng(pngFile(grey, {.gamma = gamma})).picture, 4, 4)[0];
  };
  EXPECT_EQ(shown(0), 55);
  EXPECT_EQ(shown(45455), 55);
  EXPECT_NEAR(shown(100000), 127, 1);
}

// Fails when the colours are corrected and then, with the profile, corrected again.
TEST(PngDecoderTest, AColourProfileGoesBeforeTheGamma) {
  const Picture grey = drawn({8, 8}, [](int, int) { return Rgb{55, 55, 55}; });
  const std::string profile = colourProfile("RGB ", 600);
  const auto decoded = decodedPng(pngFile(grey, {.profile = profile, .gamma = 100000}));
  EXPECT_EQ(decoded.colourProfile.size(), 600U);
  EXPECT_EQ(colourAt(decoded.picture, 4, 4), (Rgb{55, 55, 55}));
}

TEST(PngDecoderTest, ReadsTheOrientation) {
  const std::string file = pngFile(noisyPicture({4, 4}), {.exif = exifData(6, true)});
  EXPECT_EQ(decodedPng(file).orientation, Orientation::turnedRight);
  EXPECT_EQ(decodedPng(pngFile(noisyPicture({4, 4}))).orientation, Orientation::upright);
}

TEST(PngDecoderTest, HandsOverTheColourProfile) {
  const std::string profile = colourProfile("RGB ", 600);
  const DecodedPicture picture = decodedPng(pngFile(noisyPicture({4, 4}), {.profile = profile}));
  EXPECT_EQ(std::string(picture.colourProfile.begin(), picture.colourProfile.end()), profile);
  EXPECT_TRUE(decodedPng(pngFile(noisyPicture({4, 4}))).colourProfile.empty());
}

TEST(PngDecoderTest, KnowsItsFilesByTheirStart) {
  const std::string file = pngFile(noisyPicture({4, 4}));
  EXPECT_TRUE(isPng(asBytes(file)));
  EXPECT_FALSE(isPng(asBytes(file.substr(0, 7))));
  EXPECT_FALSE(isPng(asBytes(jpegFile(noisyPicture({4, 4})))));
}

DecodedPicture decodedJpeg(const std::string& file, int largestSide = unscaled) {
  PictureInput input(asBytes(file));
  return decodeJpeg(input, largestSide);
}

struct JpegKind {
  const char* name;
  JpegOptions options;
};

void PrintTo(const JpegKind& kind, std::ostream* out) {
  *out << kind.name;
}

std::string nameOfJpeg(const ::testing::TestParamInfo<JpegKind>& kind) {
  return kind.param.name;
}

class JpegKindTest : public ::testing::TestWithParam<JpegKind> {};

Picture shownBy(const Picture& picture, const JpegOptions& options) {
  if (options.samples != JpegOptions::Samples::grey) return picture;
  return drawn(picture.size, [&](int x, int y) {
    const std::uint8_t level = *picture.at(x, y);
    return Rgb{level, level, level};
  });
}

TEST_P(JpegKindTest, ShowsThePicture) {
  const Picture picture = smoothPicture({301, 203});
  const DecodedPicture result = decodedJpeg(jpegFile(picture, GetParam().options));
  EXPECT_EQ(result.fullSize, picture.size);
  const PictureDistance off = distance(result.picture, shownBy(picture, GetParam().options));
  EXPECT_LT(off.mean, 1.5);
  EXPECT_LE(off.largest, 8);
}

/// Down to where the decoder works at an eighth of the scale.
TEST_P(JpegKindTest, IsScaledDown) {
  const Picture picture = smoothPicture({803, 401});
  const std::string file = jpegFile(picture, GetParam().options);
  for (const int largestSide : {800, 402, 401, 201, 100, 30, 3}) {
    const DecodedPicture result = decodedJpeg(file, largestSide);
    const PictureSize size = fitted(picture.size, largestSide);
    EXPECT_EQ(result.fullSize, picture.size);
    ASSERT_EQ(result.picture.size, size);
    const Picture expected = shownBy(averagedByDefinition(picture, size), GetParam().options);
    const PictureDistance off = distance(result.picture, expected);
    EXPECT_LT(off.mean, 1.5) << largestSide;
    EXPECT_LE(off.largest, 8) << largestSide;
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, JpegKindTest,
    ::testing::Values(
        JpegKind{"Baseline", {}}, JpegKind{"HalvedColour", {.halvesColour = true}},
        JpegKind{"Progressive", {.progressive = true}},
        JpegKind{"ProgressiveHalvedColour", {.progressive = true, .halvesColour = true}},
        JpegKind{"Grey", {.samples = JpegOptions::Samples::grey}},
        JpegKind{"ProgressiveGrey", {.samples = JpegOptions::Samples::grey, .progressive = true}},
        JpegKind{"Inks", {.samples = JpegOptions::Samples::inks}},
        JpegKind{"Restarts", {.restartInterval = 3}}),
    nameOfJpeg);

TEST(JpegDecoderTest, ReadsTheOrientation) {
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const std::string file =
        jpegFile(noisyPicture({16, 8}), {.exif = exifData(orientation, orientation % 2 == 0)});
    EXPECT_EQ(static_cast<int>(decodedJpeg(file).orientation), orientation);
  }
  EXPECT_EQ(decodedJpeg(jpegFile(noisyPicture({16, 8}))).orientation, Orientation::upright);
}

TEST(JpegDecoderTest, HandsOverTheColourProfile) {
  const std::string profile = colourProfile("RGB ", 3000);
  const DecodedPicture picture = decodedJpeg(jpegFile(noisyPicture({16, 8}), {.profile = profile}));
  EXPECT_EQ(std::string(picture.colourProfile.begin(), picture.colourProfile.end()), profile);
}

TEST(JpegDecoderTest, PassesOverAColourProfileThatIsTooLarge) {
  for (const std::size_t size : {largestColourProfile + 1, std::size_t{200'000}}) {
    const Picture picture = smoothPicture({64, 64});
    const DecodedPicture result =
        decodedJpeg(jpegFile(picture, {.profile = colourProfile("RGB ", size)}));
    EXPECT_TRUE(result.colourProfile.empty());
    EXPECT_LT(distance(result.picture, picture).mean, 2);
  }
}

TEST(JpegDecoderTest, KnowsItsFilesByTheirStart) {
  const std::string file = jpegFile(noisyPicture({4, 4}));
  EXPECT_TRUE(isJpeg(asBytes(file)));
  EXPECT_FALSE(isJpeg(asBytes(file.substr(0, 2))));
  EXPECT_FALSE(isJpeg(asBytes(pngFile(noisyPicture({4, 4})))));
}

}  // namespace
}  // namespace corvane::testing
